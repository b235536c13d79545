// bridgeadm copy-instance SOURCE TARGET [--overwrite]
#include <memory>
#include <string>

#include "Session.h"
#include "conf/Conf.h"
#include "shared/Command.h"
#include "shared/OptionParser.h"
#include "xpl/Xerr.h"

namespace {

struct Arguments {
    std::string source;
    std::string target;
    bool overwrite = false;
};

bool canBeCopied(Session& session, const Arguments& arguments) {
    if (!session.requireInstance(arguments.source)) return false;
    if (arguments.source == arguments.target) {
        return session.fail(ExitCode::Usage, "an instance cannot be copied onto itself");
    }
    if (!session.requirePossibleInstance(arguments.target)) return false;
    return arguments.overwrite || !session.isKnown(arguments.target) ||
           session.fail(ExitCode::Usage,
                        "instance " + arguments.target + " exists: add --overwrite");
}

void run(Session& session, const Arguments& arguments) {
    if (!session.startWithConfiguration() || !canBeCopied(session, arguments)) return;
    const XErr err = confCopyInstance(session.store(), arguments.source, arguments.target);
    if (err != XERR_SUCCESS) {
        session.failStatus(ExitCode::Library, "not copied", err);
        return;
    }
    if (!session.commit()) return;
    session.print("copied the settings of " + arguments.source + " to " + arguments.target + "\n");
}

void declare(OptionParser& parser, Session& session) {
    const auto arguments = std::make_shared<Arguments>();
    parser.add("SOURCE", arguments->source, "Instance to copy").required();
    parser.add("TARGET", arguments->target, "Name of the copy").required();
    parser.addFlag("--overwrite", arguments->overwrite,
                   "Replace the settings of an existing instance");
    parser.onRun([&session, arguments] { run(session, *arguments); });
}

}  // namespace

extern const Command commandCopyInstance;
const Command commandCopyInstance{"Instances",
                                  "",
                                  "copy-instance",
                                  "Copy the settings of an instance to another instance",
                                  "Example: bridgeadm copy-instance Nougat64 Nougat64_1\n"
                                  "To copy the app cache as well, use `bridgeadm copy-cache`.",
                                  declare};
