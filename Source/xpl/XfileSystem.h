#ifndef XPL_XFILESYSTEM_H
#define XPL_XFILESYSTEM_H

// The system functions that Xfile.cpp needs in addition to Xfile.h.

#include <cstdint>
#include <string>

#include "xpl/Xerr.h"
#include "xpl/Xfile.h"

// Opens a file without creating its folder.
[[nodiscard]] XErr xfileSystemOpen(Xfile& file, const std::string& path, XfileMode mode,
                                   XfileSharing sharing);

// Moves `source` to `destination`, replacing an existing file. While another process has either
// file open, retries up to `retries` times.
[[nodiscard]] XErr xfileSystemReplace(const std::string& source, const std::string& destination,
                                      int retries);

// If this Windows error of an open or read can mean that another process uses the file, waits a
// moment and returns true; else returns false at once.
[[nodiscard]] bool xfileSystemWaitForHolder(std::int32_t windowsError);

#endif
