/**
 * @file preflight.hpp
 * @brief What would make the initialisation fail or end the process.
 */
#ifndef BRIDGE_PREFLIGHT_HPP
#define BRIDGE_PREFLIGHT_HPP

#include <bridge/preflight.h>

#include <bridge/session.hpp>
#include <optional>
#include <string>
#include <vector>

namespace bridge {

/** One thing that is wrong. */
struct Problem {
    /** What it is. */
    std::string what;
    /** What to do about it. */
    std::string remedy;
};

/** What the initialisation will be told. */
struct PreflightOptions {
    /** As for initWithoutFile(). */
    bool noConfFile = false;
    /** As for initWithLog(); none: the product's own log. */
    std::optional<std::string> logFilePath;
};

/**
 * Looks at what the initialisation of a client needs, and changes nothing.
 * @param client  who the host is
 * @param options how it will be initialised
 * @return the problems; empty when the start would work
 */
inline std::vector<Problem> preflight(Client client, const PreflightOptions& options = {}) {
    std::vector<Problem> problems;
#if defined(_WIN32)
    bridgeForEachProblem(
        clientId(client), options.noConfFile ? 1 : 0,
        options.logFilePath ? options.logFilePath->c_str() : nullptr,
        [](void* all, const char* what, const char* remedy) {
            static_cast<std::vector<Problem>*>(all)->push_back({what, remedy});
        },
        &problems);
#else
    static_cast<void>(client);
    static_cast<void>(options);
#endif
    return problems;
}

}  // namespace bridge

#endif
