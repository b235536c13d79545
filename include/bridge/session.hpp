/**
 * @file session.hpp
 * @brief Initialisation and shutdown of the library.
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

/** The kind of host. Of two running hosts of the same kind, only the first receives events. */
enum class Client { Launcher, Installer, LogCollector, Helper, Uninstaller };

/** The client id, a string literal. */
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

/** Internal; not for hosts. */
namespace detail {

inline Status initialise(Client client, bool noConfFile, const char* logFilePath) {
    const char* const id = clientId(client);
    rememberStart(id, logFilePath);
    configuration().startWith(noConfFile ? std::string() : dataFolder() + "vantrel.conf");
    return Status(bridgeApiInitEx(id, noConfFile ? 1 : 0, 0, logFilePath), "bridgeApiInitEx");
}

}  // namespace detail

/** bridgeApiInit(). preflight() finds fatal errors before this call. */
inline Status init(Client client) {
    const char* const id = clientId(client);
    detail::rememberStart(id, nullptr);
    detail::configuration().startWith(detail::dataFolder() + "vantrel.conf");
    return Status(bridgeApiInit(id), "bridgeApiInit");
}

/** bridgeApiInitEx() without a configuration file, with the default values only. */
inline Status initWithoutFile(Client client, const char* logFilePath = nullptr) {
    return detail::initialise(client, /*noConfFile=*/true, logFilePath);
}

/** bridgeApiInitEx() with a log file. */
inline Status initWithLog(Client client, const std::string& logFilePath) {
    return detail::initialise(client, /*noConfFile=*/false, logFilePath.c_str());
}

/**
 * bridgeApiFini(). Also ends every wait for an event queue or a Work. Do not call it inside a
 * callback, and call FreeLibrary() only after it has returned.
 */
inline void finish() {
    const bool stops = !detail::isEventThread();
    static_cast<void>(bridgeApiFini());
    if (stops) detail::endObservers();
}

}  // namespace bridge

#endif
