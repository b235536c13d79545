// Layout of a log line: header, optional place in the source, message.
#include "xpl/XlogLine.h"

#include <algorithm>
#include <cstdio>

namespace {

constexpr std::size_t kLimit = XLOG_LINE_SIZE - 2;  // room for the line feed and the NUL

// A line under construction. Text beyond the limit is dropped; `used` then stands at the limit.
class Line {
 public:
    explicit Line(XlogLineBuffer& buffer) : buffer_(buffer) {
        // A formatter that fails may leave part of its room untouched: no old stack bytes there.
        buffer_.fill(' ');
    }

    void append(const char* format, ...) XPRINTF_LIKE(2, 3) {
        std::va_list arguments;
        va_start(arguments, format);
        appendList(format, arguments);
        va_end(arguments);
    }

    void appendList(const char* format, std::va_list arguments) XPRINTF_LIKE(2, 0) {
        if (used_ >= kLimit) return;
        const int length = std::vsnprintf(&buffer_[used_], kLimit + 1 - used_, format, arguments);
        used_ = length < 0 ? kLimit : std::min(kLimit, used_ + static_cast<std::size_t>(length));
        if (length < 0) blankTerminators();
    }

    std::size_t finish() {
        std::size_t length = used_ < kLimit ? used_ : kLimit - 1;
        if (length == 0 || buffer_[length - 1] != '\n') buffer_[length++] = '\n';
        buffer_[length] = '\0';
        return length;
    }

 private:
    void blankTerminators() { std::replace(buffer_.begin(), buffer_.end(), '\0', ' '); }

    XlogLineBuffer& buffer_;
    std::size_t used_ = 0;
};

}  // namespace

std::size_t xlogFormatLine(XlogLineBuffer& buffer, const XlogLineHeader& header,
                           const XlogLineSite& site, const char* format, std::va_list arguments) {
    Line line(buffer);
    line.append("%s %-5d %-5s %-6s %s %-1c: ", header.timestamp, header.processId, header.threadId,
                header.tag, header.client, header.level);
    if (site.file != nullptr) line.append("%s ", site.file);
    if (site.function != nullptr) line.append("%s ", site.function);
    if (site.line != 0) line.append("%d | ", site.line);
    line.appendList(format, arguments);
    return line.finish();
}
