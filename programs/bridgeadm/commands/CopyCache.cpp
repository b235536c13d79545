// bridgeadm copy-cache SOURCE TARGET
#include <memory>
#include <string>

#include "Session.h"
#include "appc/Appc.h"
#include "appc/AppcStore.h"
#include "shared/Command.h"
#include "shared/OptionParser.h"
#include "xpl/Xerr.h"
#include "xpl/Xfile.h"

namespace {

struct Arguments {
    std::string source;
    std::string target;
};

bool hasCache(const std::string& instance) {
    return xfileExists(appcStore().instanceDir(instance)) == XERR_SUCCESS;
}

bool canBeCopied(Session& session, const Arguments& arguments) {
    if (!session.requireInstance(arguments.target)) return false;
    if (!hasCache(arguments.source)) {
        return session.fail(ExitCode::UnknownName, "no app cache of " + arguments.source);
    }
    return !hasCache(arguments.target) ||
           session.fail(ExitCode::Usage, "an app cache of " + arguments.target + " exists");
}

void run(Session& session, const Arguments& arguments) {
    // openCache() takes the source's machine-wide lock, so the source does not change during the
    // copy.
    if (!session.openCache(arguments.source) || !canBeCopied(session, arguments)) return;
    const XErr err = appcCopyInstance(appcStore(), arguments.source, arguments.target);
    if (!session.saved(err)) return;
    session.print("copied the app cache of " + arguments.source + " to " + arguments.target + "\n");
}

void declare(OptionParser& parser, Session& session) {
    const auto arguments = std::make_shared<Arguments>();
    parser.add("SOURCE", arguments->source, "Instance to copy from").required();
    parser.add("TARGET", arguments->target, "Instance without an app cache").required();
    parser.onRun([&session, arguments] { run(session, *arguments); });
}

}  // namespace

extern const Command commandCopyCache;
const Command commandCopyCache{
    "App caches",
    "",
    "copy-cache",
    "Copy the app cache of an instance to another instance",
    "Example: bridgeadm copy-cache Nougat64 Nougat64_1\n"
    "Copies the list and the icons. The folder of the target in \"Engine\" must exist. The log\n"
    "names files that could not be copied.",
    declare};
