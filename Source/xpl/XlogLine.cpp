// Layout of a log line: header, optional source location, message.
#include "xpl/XlogLine.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <string_view>

namespace {

constexpr std::size_t kLimit = XLOG_LINE_SIZE - 2;  // room for the line feed and the NUL

// A line under construction. Text beyond the limit is dropped, and `used` stays at the limit.
class Line {
 public:
    explicit Line(XlogLineBuffer& buffer) : buffer_(buffer) {}

    // Appends a text, padded with spaces to this width, and the separator.
    void appendText(std::string_view text, std::size_t width, std::string_view separator) {
        constexpr std::string_view blanks = "          ";
        add(text);
        if (text.size() < width) add(blanks.substr(0, width - text.size()));
        add(separator);
    }

    void append(const char* format, ...) XPRINTF_LIKE(2, 3) {
        std::va_list arguments;
        va_start(arguments, format);
        appendList(format, arguments);
        va_end(arguments);
    }

    void appendList(const char* format, std::va_list arguments) XPRINTF_LIKE(2, 0) {
        if (used_ >= kLimit) return;
        std::va_list again;
        va_copy(again, arguments);
        const int length = std::vsnprintf(&buffer_[used_], kLimit + 1 - used_, format, arguments);
        if (length < 0) {
            appendAgain(format, again);
        } else {
            used_ = std::min(kLimit, used_ + static_cast<std::size_t>(length));
        }
        va_end(again);
    }

    std::size_t finish() {
        std::size_t length = used_ < kLimit ? used_ : kLimit - 1;
        if (length == 0 || buffer_[length - 1] != '\n') buffer_[length++] = '\n';
        buffer_[length] = '\0';
        return length;
    }

 private:
    void add(std::string_view text) {
        const std::string_view fitting = text.substr(0, kLimit - used_);
        std::copy(fitting.begin(), fitting.end(), &buffer_[used_]);
        used_ += fitting.size();
    }

    // A formatter that fails may leave part of the buffer unwritten: clear it, so that no old stack
    // bytes reach the log.
    void appendAgain(const char* format, std::va_list arguments) XPRINTF_LIKE(2, 0) {
        const auto rest = buffer_.begin() + static_cast<std::ptrdiff_t>(used_);
        std::fill(rest, buffer_.end(), ' ');
        static_cast<void>(std::vsnprintf(&buffer_[used_], kLimit + 1 - used_, format, arguments));
        std::replace(rest, buffer_.end(), '\0', ' ');
        used_ = kLimit;
    }

    XlogLineBuffer& buffer_;
    std::size_t used_ = 0;
};

}  // namespace

std::size_t xlogFormatLine(XlogLineBuffer& buffer, const XlogLineHeader& header,
                           const XlogLineSite& site, const char* format, std::va_list arguments) {
    Line line(buffer);
    char digits[12];
    const char* const end = std::to_chars(digits, digits + sizeof digits, header.processId).ptr;
    line.appendText(header.timestamp, 0, " ");
    line.appendText({digits, static_cast<std::size_t>(end - digits)}, 5, " ");
    line.appendText(header.threadId, 5, " ");
    line.appendText(header.tag, 6, " ");
    line.appendText(header.client, 0, " ");
    line.appendText({&header.level, 1}, 1, ": ");
    if (site.file != nullptr) line.append("%s ", site.file);
    if (site.function != nullptr) line.append("%s ", site.function);
    if (site.line) line.append("%d | ", *site.line);
    line.appendList(format, arguments);
    return line.finish();
}
