// The logger: enabled levels, destination and header of lines.
#include "xpl/Xlog.h"

#include <array>
#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include "xpl/Xclock.h"
#include "xpl/Xfile.h"
#include "xpl/XlogLine.h"
#include "xpl/Xrcu.h"
#include "xpl/Xsystem.h"
#include "xpl/Xunload.h"

namespace {

constexpr XlogModule kLog{XlogTag::XLOG, "Source/xpl/Xlog"};

constexpr const char* kTagNames[] = {
#define XLOG_NAME(tag) #tag,
    XLOG_TAGS(XLOG_NAME)
#undef XLOG_NAME
};
constexpr std::size_t kTagCount = std::size(kTagNames);

constexpr std::string_view kLevelLetters = "EWIDV";
constexpr std::string_view kDefaultLevels = "*:I XMEM:D";

struct Tag {
    std::atomic<std::int32_t> threshold;
    std::atomic<const char*> name;
};

std::array<Tag, kTagCount> tags;

// Header and destination of lines.
struct Context {
    std::string path;             // empty: standard output
    std::shared_ptr<Xfile> file;  // null when the path is not open: lines are dropped
    std::string clientName;
    std::string zoneSuffix;
    bool showFile = false;
    bool showFunction = false;
    bool showLine = false;
};

// The library's only object with a destructor that runs at exit or unload: it frees the texts,
// closes the log file, and at unload releases everything in Xunload.
struct ContextHolder {
    ContextHolder() = default;
    ContextHolder(const ContextHolder&) = delete;
    ContextHolder& operator=(const ContextHolder&) = delete;
    ~ContextHolder() { xunloadRelease(); }

    Xrcu<Context> published;
};

#if defined(__clang__)
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wexit-time-destructors"
#pragma clang diagnostic ignored "-Wglobal-constructors"
#endif
ContextHolder context;
#if defined(__clang__)
#pragma clang diagnostic pop
#endif

// Keeps the context alive while a line is written.
class ContextInUse {
 public:
    const Context& operator*() const { return now_; }
    const Context* operator->() const { return &now_; }

 private:
    // Used before the first change and after the holder's destruction.
    static const Context& initial() {
        static const Context* const empty = xunloadKeep<Context>();
        return *empty;
    }

    const Xrcu<Context>::Reader reader_{context.published};
    const Context& now_ = reader_.get() == nullptr ? initial() : *reader_.get();
};

std::int32_t defaultIsEnabled(std::int32_t tag, std::int32_t level) {
    const auto index = static_cast<std::size_t>(tag);
    return index < kTagCount && tags[index].threshold.load(std::memory_order_relaxed) >= level;
}

const char* baseName(const char* file) {
    const std::string_view text(file);
    const std::size_t separator = text.rfind('\\');
    return separator == std::string_view::npos ? file : file + separator + 1;
}

const char* tagName(std::int32_t tag) {
    const auto index = static_cast<std::size_t>(tag);
    const char* name =
        index < kTagCount ? tags[index].name.load(std::memory_order_relaxed) : nullptr;
    return name == nullptr ? "" : name;
}

char levelLetter(std::int32_t level) {
    const auto index = static_cast<std::size_t>(level);
    return index < kLevelLetters.size() ? kLevelLetters[index] : '?';
}

std::int32_t writeLine(const Context& to, const XlogLineBuffer& line, std::size_t length) {
    if (to.path.empty()) {
        const int printed = std::printf("%s", line.data());
        std::fflush(stdout);  // a fatal break may follow
        return printed;
    }
    std::uint32_t written = 0;
    if (to.file == nullptr || xfileWrite(*to.file, line.data(), static_cast<std::uint32_t>(length),
                                         written) != XERR_SUCCESS) {
        return 0;  // a line that cannot be written is dropped: there is nowhere to report it
    }
    return static_cast<std::int32_t>(written);
}

std::int32_t defaultPrint(std::int32_t level, std::int32_t tag, const char* file,
                          const char* function, std::int32_t line, const char* format, ...)
    XPRINTF_LIKE(6, 7);

std::int32_t defaultPrint(std::int32_t level, std::int32_t tag, const char* file,
                          const char* function, std::int32_t line, const char* format, ...) {
    const ContextInUse now;
    const XclockStamp stamp = xclockStamp(xclockNow(), now->zoneSuffix.c_str());
    const std::string thread = std::to_string(xsystemThreadId());
    const XlogLineHeader header{stamp.data(), xsystemProcessId(),      thread.c_str(),
                                tagName(tag), now->clientName.c_str(), levelLetter(level)};
    XlogLineSite site;
    if (now->showFile) site.file = baseName(file);
    if (now->showFunction) site.function = function;
    if (now->showLine) site.line = line;

    XlogLineBuffer buffer;
    std::va_list arguments;
    va_start(arguments, format);
    const std::size_t length = xlogFormatLine(buffer, header, site, format, arguments);
    va_end(arguments);
    return writeLine(*now, buffer, length);
}

void nameTags() {
    for (std::size_t i = 0; i < kTagCount; ++i) {
        tags[i].name.store(kTagNames[i], std::memory_order_relaxed);
        tags[i].threshold.store(XLOG_INFORMATION, std::memory_order_relaxed);
    }
}

void setThreshold(std::string_view name, std::int32_t level) {
    for (std::size_t i = 0; i < kTagCount; ++i) {
        if (name == "*" || name == tagName(static_cast<std::int32_t>(i))) {
            tags[i].threshold.store(level, std::memory_order_relaxed);
        }
    }
}

XErr applyLevelItem(std::string_view item) {
    const std::size_t colon = item.find(':');
    if (colon == std::string_view::npos) return XERR_INVAL;
    const std::string_view level = item.substr(colon + 1);
    if (level.empty() || level.find(':') != std::string_view::npos) return XERR_INVAL;
    const std::size_t number = kLevelLetters.find(level.front());
    if (number == std::string_view::npos) return XERR_INVAL;
    setThreshold(item.substr(0, colon), static_cast<std::int32_t>(number));
    return XERR_SUCCESS;
}

void setZoneSuffix() {
    const std::int64_t local = xclockNow();
    const std::string suffix = xclockZoneSuffix(local, xclockLocalToUtc(local));
    context.published.change([&suffix](Context& next) { next.zoneSuffix = suffix; });
}

}  // namespace

XlogLogger xlogLogger{defaultIsEnabled, defaultPrint};

XErr xlogLibInit(const XlogLogger* hostLogger, const std::string& logFilePath) {
    if (hostLogger != nullptr) {
        xlogLogger = *hostLogger;
        XLOG_D(kLog, "xlog inited using logger");
        return XERR_SUCCESS;
    }
    if (xlogSetFile(logFilePath) != XERR_SUCCESS) XLOG_FATAL(kLog);
    nameTags();
    if (xlogSetLevels(kDefaultLevels) != XERR_SUCCESS) return XERR_FAILURE;
    setZoneSuffix();
    XLOG_D(kLog, "xlog lib init done.");
    return XERR_SUCCESS;
}

XErr xlogSetLevels(std::string_view levels) {
    XLOG_D(kLog, "Change log levels with: %s", std::string(levels).c_str());
    while (!levels.empty()) {
        const std::size_t blank = levels.find(' ');
        const std::string_view item = levels.substr(0, blank);
        levels = blank == std::string_view::npos ? std::string_view{} : levels.substr(blank + 1);
        if (item.empty()) continue;
        if (const XErr err = applyLevelItem(item); err != XERR_SUCCESS) return err;
    }
    return XERR_SUCCESS;
}

XErr xlogSetFile(const std::string& path) {
    if (path.empty()) return XERR_SUCCESS;
    context.published.change([&path](Context& next) {
        next.path = path;
        next.file.reset();
    });
    auto file = std::make_shared<Xfile>();
    if (const XErr err = xfileOpen(*file, path, XfileMode::Append); err != XERR_SUCCESS) return err;
    context.published.change([&file](Context& next) { next.file = file; });
    return XERR_SUCCESS;
}

void xlogSetClientName(std::string_view name) {
    context.published.change([name](Context& next) { next.clientName = name; });
}

void xlogSetDisplay(bool showFile, bool showFunction, bool showLine) {
    context.published.change([=](Context& next) {
        next.showFile = showFile;
        next.showFunction = showFunction;
        next.showLine = showLine;
    });
}

void xlogException(const XlogModule& module, const char* function, const char* what) noexcept {
    XLOG_E(module, "%s: exception: %s", function, what);
}

void xlogFatalBreak(const XlogModule& module, std::int32_t line, const char* function) noexcept {
    if (xlogIsEnabled(module, XLOG_ERROR)) {
        // The format is part of the log's vocabulary and must not change. Its last number is
        // always 0.
        static_cast<void>(xlogLogger.print(
            XLOG_ERROR, static_cast<std::int32_t>(module.tag), module.file, function, line,
            "FATAL: DEBUG BREAK: %s:%d %f()", module.file, line, 0.0));
    }
    xsystemDebugBreak();
}
