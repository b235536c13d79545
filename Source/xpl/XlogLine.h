#ifndef XPL_XLOGLINE_H
#define XPL_XLOGLINE_H

#include <array>
#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "xpl/Xattributes.h"

// Formats one log line into a fixed buffer.

constexpr std::size_t XLOG_LINE_SIZE = 4096;

struct XlogLineHeader {
    const char* timestamp;  // "2024-03-07 14:05:09.042+0100"
    std::int32_t processId;
    const char* threadId;
    const char* tag;
    const char* client;
    char level;
};

// The source location of a line: the members that are set are shown.
struct XlogLineSite {
    const char* file = nullptr;
    const char* function = nullptr;
    std::optional<std::int32_t> line;  // 0, which a host may pass, is shown
};

using XlogLineBuffer = std::array<char, XLOG_LINE_SIZE>;

// Formats a line that ends with a line feed, and returns its length, at most 4094. A longer line is
// cut at 4093 characters. A message that cannot be formatted is padded with spaces to that length.
std::size_t xlogFormatLine(XlogLineBuffer& buffer, const XlogLineHeader& header,
                           const XlogLineSite& site, const char* format, std::va_list arguments)
    XPRINTF_LIKE(4, 0);

#endif
