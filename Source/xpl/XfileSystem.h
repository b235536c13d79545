#ifndef XPL_XFILESYSTEM_H
#define XPL_XFILESYSTEM_H

// What Xfile.cpp needs of the system besides the rest of Xfile.h.

#include <cstdint>
#include <string>

#include "xpl/Xerr.h"
#include "xpl/Xfile.h"

// Opens a file whose folder is there, or is not.
[[nodiscard]] XErr xfileSystemOpen(Xfile& file, const std::string& path, XfileMode mode,
                                   XfileSharing sharing);

// Moves `source` onto `destination`, replacing what is there, with so many further attempts while
// somebody holds it.
[[nodiscard]] XErr xfileSystemReplace(const std::string& source, const std::string& destination,
                                      int retries);

// Waits a moment, and returns true, after a Windows error of an open or a read that can mean that
// another process holds the file. False at once for other errors.
[[nodiscard]] bool xfileSystemWaitForHolder(std::int32_t windowsError);

#endif
