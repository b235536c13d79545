#include "QuietLog.h"

#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <string_view>

#include "xpl/Xlog.h"

namespace {

void (*callAtFatalBreak)() = nullptr;

std::int32_t enableAll(std::int32_t, std::int32_t) { return 1; }

// Formats the line, so that sanitizers report arguments that do not match.
std::int32_t format(std::int32_t, std::int32_t, const char*, const char*, std::int32_t,
                    const char* format, ...) XPRINTF_LIKE(6, 7);

std::int32_t format(std::int32_t, std::int32_t, const char*, const char*, std::int32_t,
                    const char* format, ...) {
    char line[4096];
    std::va_list arguments;
    va_start(arguments, format);
    const int length = std::vsnprintf(line, sizeof line, format, arguments);
    va_end(arguments);
    constexpr std::string_view kFatalBreak = "FATAL: DEBUG BREAK: ";
    const bool isFatal = std::string_view(line).substr(0, kFatalBreak.size()) == kFatalBreak;
    if (isFatal && callAtFatalBreak != nullptr) callAtFatalBreak();
    return length;
}

}  // namespace

void logIntoNothing() {
    static const bool once = [] {
        const XlogLogger own{enableAll, format};
        static_cast<void>(xlogLibInit(&own, ""));
        return true;
    }();
    static_cast<void>(once);
}

void logCallAtFatalBreak(void (*atFatalBreak)()) { callAtFatalBreak = atFatalBreak; }
