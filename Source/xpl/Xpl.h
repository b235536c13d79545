#ifndef XPL_XPL_H
#define XPL_XPL_H

#include <cstdint>
#include <string>

#include "xpl/Xerr.h"
#include "xpl/Xlog.h"

// A log of at least this size is rotated at start-up.
constexpr std::int64_t XPL_LOG_ROTATE_SIZE = 10'485'760;

// Starts the platform layer: UTF-8 locale, log rotation ("<log>" to "<log>.1", that to "<log>.2"),
// logging. Call it before anything else in the library; it may be called again.
[[nodiscard]] XErr xplLibInit(const XlogLogger* logger, const std::string& logFilePath);

#endif
