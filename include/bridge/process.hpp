/**
 * @file process.hpp
 * @brief Registry values, files and the arguments of the initialisation. Not for hosts.
 */
#ifndef BRIDGE_PROCESS_HPP
#define BRIDGE_PROCESS_HPP

#include <bridge/preflight.h>

#include <mutex>
#include <optional>
#include <string>

namespace bridge::detail {

/** A string value from the product's registry key; empty when it is missing. */
inline std::string productValue(const wchar_t* name) {
#if defined(_WIN32)
    std::string text(BRIDGE_PREFLIGHT_TEXT, '\0');
    bridgeProductValue(name, text.data());
    text.resize(std::char_traits<char>::length(text.c_str()));
    return text;
#else
    static_cast<void>(name);
    return {};
#endif
}

/** The bytes of a file, if it can be read. Other programs may replace the file meanwhile. */
inline std::optional<std::string> readFile(const std::string& path) {
#if defined(_WIN32)
    constexpr unsigned long kRead = 0x80000000;  // GENERIC_READ
    constexpr unsigned long kOpenExisting = 3;
    void* const file = bridgePreflightOpen(path.c_str(), kRead, kOpenExisting, 0);
    if (file == nullptr) return std::nullopt;
    std::string content;
    std::string piece(65536, '\0');
    unsigned long done = 0;
    int ok = 0;
    do {
        ok = ::ReadFile(file, piece.data(), static_cast<unsigned long>(piece.size()), &done,
                        nullptr);
        if (ok != 0) content.append(piece, 0, done);
    } while (ok != 0 && done > 0);
    ::CloseHandle(file);
    if (ok == 0) return std::nullopt;
    return content;
#else
    static_cast<void>(path);
    return std::nullopt;
#endif
}

/** The product's data folder, with a separator at the end. */
inline std::string dataFolder() { return productValue(L"UserDefinedDir") + "\\"; }

/** The arguments of the last initialisation. */
struct Start {
    std::mutex lock;
    std::string client;
    std::string log;
};

/** Never destroyed, because events can arrive until the process ends. */
inline Start& start() {
    static Start& state = *new Start;
    return state;
}

/** A null log path stands for the product's own log, an empty one for the current log. */
inline void rememberStart(const char* client, const char* logFilePath) {
    const std::string own = dataFolder() + "Logs\\Player.log";
    const std::lock_guard<std::mutex> guard(start().lock);
    start().client = client;
    if (logFilePath == nullptr) start().log = own;
    if (logFilePath != nullptr && *logFilePath != '\0') start().log = logFilePath;
}

inline std::string logPath() {
    const std::lock_guard<std::mutex> guard(start().lock);
    return start().log;
}

/** The client id of the last initialisation; empty before the first. */
inline std::string clientOfStart() {
    const std::lock_guard<std::mutex> guard(start().lock);
    return start().client;
}

}  // namespace bridge::detail

#endif
