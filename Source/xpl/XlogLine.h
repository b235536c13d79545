#ifndef XPL_XLOGLINE_H
#define XPL_XLOGLINE_H

#include <array>
#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "xpl/Xattributes.h"

// The text of one log line, made in a buffer of its own.

constexpr std::size_t XLOG_LINE_SIZE = 4096;

struct XlogLineHeader {
    const char* timestamp;  // "2024-03-07 14:05:09.042+0100"
    std::int32_t processId;
    const char* threadId;
    const char* tag;
    const char* client;
    char level;
};

// What a line shows between header and message: the members that are set.
struct XlogLineSite {
    const char* file = nullptr;
    const char* function = nullptr;
    std::optional<std::int32_t> line;  // a host's logging call may pass 0, which shows
};

using XlogLineBuffer = std::array<char, XLOG_LINE_SIZE>;

// Formats a line, which ends with a line feed, and returns its length, at most 4094. A longer line
// is cut at 4093 characters. A message that cannot be formatted is cut there too, padded with
// blanks.
std::size_t xlogFormatLine(XlogLineBuffer& buffer, const XlogLineHeader& header,
                           const XlogLineSite& site, const char* format, std::va_list arguments)
    XPRINTF_LIKE(4, 0);

#endif
