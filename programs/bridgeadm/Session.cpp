#include "Session.h"

#include "utl/UtlFolders.h"
#include "utl/UtlImages.h"
#include "xpl/Xfence.h"
#include "xpl/Xpl.h"

namespace {

constexpr XlogModule kLog{XlogTag::CONF, "programs/bridgeadm/Session"};

XErr load() {
    return confLibInit(confStore(), utlGetDataDir() + "vantrel.conf", /*allowDeprecated=*/false);
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
    // A line that ends at its "=" makes the loader throw.
    const XErr err = xfence(kLog, "confLibInit", XErr{XERR_FAILURE}, load);
    return err == XERR_SUCCESS ||
           failStatus(ExitCode::Library, "the configuration cannot be loaded", err);
}

bool Session::isKnown(const std::string& instance) const {
    const auto instances = confGetInstances(store());
    return instances.find(instance) != instances.end();
}

bool Session::requireInstance(const std::string& instance) {
    return isKnown(instance) || failInstance(instance);
}

bool Session::requirePossibleInstance(const std::string& instance) {
    if (!confIsInstanceName(instance)) {
        return fail(ExitCode::BadValue, "no instance can have this name: " + instance);
    }
    // It would end every host that lists the instances.
    return utlFindImageTrait(utlImageNameOfInstance(instance)) != nullptr ||
           fail(ExitCode::UnknownName, "instance " + instance + " has an unknown image");
}

bool Session::commit() {
    const XErr err = confCommit(store());
    return err == XERR_SUCCESS || failStatus(ExitCode::Commit, "not committed", err);
}
