#include "support/LogCapture.h"

#include <algorithm>
#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <regex>

namespace {

std::mutex guard;
std::vector<LogCapture::Line> captured;

constexpr const char* kTagNames[] = {
#define TAG_NAME(tag) #tag,
    XLOG_TAGS(TAG_NAME)
#undef TAG_NAME
};

std::int32_t enableAll(std::int32_t, std::int32_t) { return 1; }

std::int32_t capture(std::int32_t level, std::int32_t tag, const char* file, const char* function,
                     std::int32_t, const char* format, ...) XPRINTF_LIKE(6, 7);

std::int32_t capture(std::int32_t level, std::int32_t tag, const char* file, const char* function,
                     std::int32_t, const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    std::va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, arguments);
    va_end(arguments);
    std::string message(static_cast<std::size_t>(length), '\0');
    std::vsnprintf(message.data(), message.size() + 1, format, again);
    va_end(again);
    const std::lock_guard<std::mutex> lock(guard);
    captured.push_back({static_cast<XlogTag>(tag), level, file, function, message});
    return length;
}

std::atomic<int> refusedLines;
std::atomic<int> printedLines;

std::int32_t enableNone(std::int32_t, std::int32_t) {
    ++refusedLines;
    return 0;
}

std::int32_t countLine(std::int32_t, std::int32_t, const char*, const char*, std::int32_t,
                       const char*, ...) XPRINTF_LIKE(6, 7);

std::int32_t countLine(std::int32_t, std::int32_t, const char*, const char*, std::int32_t,
                       const char*, ...) {
    return ++printedLines;
}

}  // namespace

LogCapture::LogCapture() : previous_(xlogGetLogger()) {
    const XlogLogger own{enableAll, capture};
    static_cast<void>(xlogLibInit(&own, {}));
    clear();
}

LogCapture::~LogCapture() { static_cast<void>(xlogLibInit(&previous_, {})); }

std::vector<LogCapture::Line> LogCapture::lines() const {
    const std::lock_guard<std::mutex> lock(guard);
    return captured;
}

Lines LogCapture::texts(std::int32_t upToLevel) const {
    Lines texts;
    for (const Line& line : lines()) {
        if (line.level > upToLevel) continue;
        const auto level = static_cast<std::size_t>(line.level);
        texts.push_back(std::string(1, "EWIDV"[level]) + " " +
                        kTagNames[static_cast<std::size_t>(line.tag)] + " " + line.message);
    }
    return texts;
}

void LogCapture::clear() {
    const std::lock_guard<std::mutex> lock(guard);
    captured.clear();
}

LogOff::LogOff() : previous_(xlogGetLogger()) {
    const XlogLogger off{enableNone, countLine};
    static_cast<void>(xlogLibInit(&off, {}));
    refusedLines = 0;
    printedLines = 0;
}

LogOff::~LogOff() { static_cast<void>(xlogLibInit(&previous_, {})); }

int LogOff::refused() const { return refusedLines; }

int LogOff::printed() const { return printedLines; }

Lines logMessages(std::string_view text) {
    static const std::regex header(
        R"(^\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3}\S* \d+ +\d+ +(\S*) *(\S*) +([EWIDV]): (.*)$)");
    Lines messages;
    while (!text.empty()) {
        std::string line(text.substr(0, text.find('\n')));
        text.remove_prefix(std::min(text.size(), line.size() + 1));
        if (!line.empty() && line.back() == '\r') line.pop_back();  // standard output's text mode
        std::smatch parts;
        if (std::regex_match(line, parts, header)) {
            messages.push_back(parts[3].str() + " " + parts[1].str() + " " + parts[2].str() + " " +
                               parts[4].str());
        } else {
            messages.push_back(line);
        }
    }
    return messages;
}
