/**
 * @file process.hpp
 * @brief What the C++ headers remember of the start: client, files. Not for hosts.
 */
#ifndef BRIDGE_PROCESS_HPP
#define BRIDGE_PROCESS_HPP

#include <bridge/preflight.h>

#include <mutex>
#include <optional>
#include <string>

namespace bridge::detail {

/** A text of the product's key in the registry; empty when there is none. */
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

/** The bytes of a file; nothing when it cannot be read. Other programs may replace it meanwhile. */
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

/** The product's data folder, with one separator at its end, as the library has it. */
inline std::string dataFolder() { return productValue(L"UserDefinedDir") + "\\"; }

/** What the last initialisation was told. */
struct Start {
    std::mutex lock;
    std::string client;
    std::string log;
};

/** Made once and never destroyed, as everything here: events can come until the process ends. */
inline Start& start() {
    static Start& state = *new Start;
    return state;
}

/** Null keeps the product's own log, and an empty text the one that there is. */
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

/** The id that the last initialisation was told; empty before the first. */
inline std::string clientOfStart() {
    const std::lock_guard<std::mutex> guard(start().lock);
    return start().client;
}

}  // namespace bridge::detail

#endif
