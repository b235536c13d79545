#include "Session.h"

#include <algorithm>
#include <string>
#include <vector>

#include "appc/Appc.h"
#include "shared/Nearest.h"
#include "utl/UtlImages.h"
#include "xpl/XcatchAll.h"
#include "xpl/Xerr.h"
#include "xpl/Xlog.h"
#include "xpl/Xpl.h"

namespace {

constexpr XlogModule kLog{XlogTag::CONF, "programs/bridgeadm/Session"};

XErr load() { return confLibInit(confStore(), configurationPath(), /*allowDeprecated=*/false); }

// Unlike std::isalnum, does not depend on the locale.
bool isPackageCharacter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' ||
           c == '_';
}

}  // namespace

bool Session::start() {
    if (!requireLog()) return false;
    if (const XErr err = xplLibInit(nullptr, logPath()); err != XERR_SUCCESS) {
        return failStatus(ExitCode::Library, "the log did not start", err);
    }
    xlogSetClientName("bridgeadm");
    return true;
}

bool Session::startWithConfiguration() {
    if (!start()) return false;
    // confLibInit() throws at a line that ends with "=".
    const XErr err = xcatchAll(kLog, "confLibInit", XERR_FAILURE, load);
    return err == XERR_SUCCESS ||
           failStatus(ExitCode::Library, "the configuration cannot be loaded", err,
                      configurationHint(configurationPath()));
}

bool Session::isKnown(const std::string& instance) const {
    const auto instances = confGetInstances(store());
    return instances.find(instance) != instances.end();
}

bool Session::requireInstance(const std::string& instance) {
    if (isKnown(instance)) return true;
    std::vector<std::string> known;
    for (const auto& name : confGetInstances(store())) known.emplace_back(name);
    return failInstance(instance, nearestHint(instance, known));
}

bool Session::requirePossibleInstance(const std::string& instance) {
    if (!confIsInstanceName(instance)) {
        return fail(ExitCode::BadValue, "not a valid instance name: " + instance);
    }
    // An unknown image would end every host that lists the instances.
    return utlFindImageTrait(utlImageNameOfInstance(instance)) != nullptr ||
           fail(ExitCode::UnknownName, "instance " + instance + " has an unknown image");
}

bool Session::commit() {
    const XErr err = confCommit(store());
    return err == XERR_SUCCESS || failStatus(ExitCode::Commit, "not committed", err,
                                             configurationHint(configurationPath()));
}

bool Session::openCache(const std::string& instance) {
    if (!startWithConfiguration() || !requireInstance(instance)) return false;
    const XErr err = appcLibInit(appcStore(), instance);
    if (err != XERR_SUCCESS) {
        return failStatus(ExitCode::Library, "the app cache cannot be read", err);
    }
    return !appcRefusesSaves(appcStore()) ||
           fail(ExitCode::Library, "another program holds the app cache; try again later");
}

bool Session::requirePackageName(const std::string& package) {
    const bool possible =
        !package.empty() && std::all_of(package.begin(), package.end(), isPackageCharacter);
    return possible || fail(ExitCode::BadValue, "not a valid package name: " + package);
}

bool Session::saved(XErr err) {
    return err == XERR_SUCCESS ||
           failStatus(ExitCode::Commit, "the app cache was not written", err);
}
