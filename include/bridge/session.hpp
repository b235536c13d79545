/**
 * @file session.hpp
 * @brief Initialisation and end.
 */
#ifndef BRIDGE_SESSION_HPP
#define BRIDGE_SESSION_HPP

#include <bridge/bridge.h>

#include <bridge/configuration_file.hpp>
#include <bridge/dispatch.hpp>
#include <bridge/process.hpp>
#include <bridge/result.hpp>
#include <string>

namespace bridge {

/** Who the host is. Two hosts of one kind share a server name: only the first gets events. */
enum class Client { Launcher, Installer, LogCollector, Helper, Uninstaller };

/** The client id's text, which lives for ever, as the library wants it. */
inline const char* clientId(Client client) noexcept {
    switch (client) {
        case Client::Launcher:
            return "Launcher";
        case Client::Installer:
            return "Installer";
        case Client::LogCollector:
            return "LogCollector";
        case Client::Helper:
            return "Helper";
        case Client::Uninstaller:
            return "Uninstaller";
    }
    return "";
}

/** How the functions below start the library; not for hosts. */
namespace detail {

inline Status initialise(Client client, bool noConfFile, const char* logFilePath) {
    const char* const id = clientId(client);
    rememberStart(id, logFilePath);
    configuration().startWith(noConfFile ? std::string() : dataFolder() + "vantrel.conf");
    return Status(bridgeApiInitEx(id, noConfFile ? 1 : 0, 0, logFilePath), "bridgeApiInitEx");
}

}  // namespace detail

/** bridgeApiInit(). What it would fail at, or end the process for, preflight() says before. */
inline Status init(Client client) {
    const char* const id = clientId(client);
    detail::rememberStart(id, nullptr);
    detail::configuration().startWith(detail::dataFolder() + "vantrel.conf");
    return Status(bridgeApiInit(id), "bridgeApiInit");
}

/** bridgeApiInitEx() without a configuration file: the catalogue's defaults only. */
inline Status initWithoutFile(Client client, const char* logFilePath = nullptr) {
    return detail::initialise(client, /*noConfFile=*/true, logFilePath);
}

/** bridgeApiInitEx() with a log file of the host's choice. */
inline Status initWithLog(Client client, const std::string& logFilePath) {
    return detail::initialise(client, /*noConfFile=*/false, logFilePath.c_str());
}

/**
 * bridgeApiFini(); not from inside a callback. FreeLibrary() only after it has returned. Event
 * queues and works that somebody waits for end.
 */
inline void finish() {
    const bool stops = !detail::isEventThread();
    static_cast<void>(bridgeApiFini());
    if (stops) detail::endObservers();
}

}  // namespace bridge

#endif
