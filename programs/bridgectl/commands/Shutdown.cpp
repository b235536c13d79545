// bridgectl shutdown [INSTANCE] [--flag]
#include <bridge/bridge.h>

#include <memory>
#include <string>

#include "Session.h"
#include "shared/Command.h"
#include "shared/OptionParser.h"

namespace {

struct Arguments {
    std::string instance;
    bool isForOne = false;  // otherwise the manager and every player
    bool flag = false;
};

void run(Session& session, const Arguments& arguments) {
    // An empty name is probably an unset variable of a script. It must not shut down everything.
    if (arguments.isForOne && arguments.instance.empty()) {
        session.failInstance(arguments.instance);
        return;
    }
    if (!session.start()) return;
    if (!arguments.isForOne) {
        session.timed("bridgeShutdown", bridgeShutdown);
        session.confirm("asked the manager and every player", JsonObject{{"instance", nullptr}});
        return;
    }
    if (!session.requireInstance(arguments.instance)) return;
    const int status = session.timed("bridgePlrShutdown", [&arguments] {
        return bridgePlrShutdown(arguments.instance.c_str(), arguments.flag ? 1 : 0);
    });
    if (status != BRIDGE_SUCCESS) {
        session.failStatus(ExitCode::Program, "not asked", status);
        return;
    }
    session.confirm("asked the player of " + arguments.instance,
                    JsonObject{{"instance", arguments.instance}});
}

void declare(OptionParser& parser, Session& session) {
    const auto arguments = std::make_shared<Arguments>();
    Option instance =
        parser.add("INSTANCE", arguments->instance,
                   "Instance whose player to ask (default: the manager and all players)");
    parser.addFlag("--flag", arguments->flag, "Flag that the player receives").needs(instance);
    parser.onRun([&session, arguments, instance] {
        arguments->isForOne = instance.isGiven();
        run(session, *arguments);
    });
}

}  // namespace

extern const Command commandShutdown;
const Command commandShutdown{"Instances and apps",
                              "",
                              "shutdown",
                              "Ask the product's programs to shut down",
                              "Example: bridgectl shutdown Nougat64\n"
                              "Example: bridgectl shutdown\n"
                              "Only the log tells whether a program was running.",
                              declare};
