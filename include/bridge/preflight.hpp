/**
 * @file preflight.hpp
 * @brief Finds problems that would make the initialisation fail or end the process.
 */
#ifndef BRIDGE_PREFLIGHT_HPP
#define BRIDGE_PREFLIGHT_HPP

#include <bridge/preflight.h>

#include <bridge/session.hpp>
#include <optional>
#include <string>
#include <vector>

namespace bridge {

/** A problem and its remedy. */
struct Problem {
    /** What is wrong. */
    std::string what;
    /** How to fix it. */
    std::string remedy;
};

/** The arguments of the planned initialisation. */
struct PreflightOptions {
    /** As for initWithoutFile(). */
    bool noConfFile = false;
    /** As for initWithLog(); without a value, the product's own log. */
    std::optional<std::string> logFilePath;
};

/**
 * bridgeForEachProblem(). It does not find a bad line in the configuration file.
 * @param client  the kind of host
 * @param options the arguments of the planned initialisation
 * @return the problems
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
