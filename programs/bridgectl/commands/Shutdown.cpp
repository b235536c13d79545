// bridgectl shutdown [INSTANCE] [--flag]
#include <bridge/bridge.h>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "Command.h"
#include "Session.h"

namespace {

struct Arguments {
    std::string instance;
    bool isForOne = false;  // else for the manager and every player
    bool flag = false;
};

void run(Session& session, const Arguments& arguments) {
    // An empty name is a script's mistake, and must not end everything.
    if (arguments.isForOne && arguments.instance.empty()) {
        session.failInstance(arguments.instance);
        return;
    }
    if (!session.start()) return;
    if (!arguments.isForOne) {
        session.timed("bridgeShutdown", bridgeShutdown);
        session.confirm("asked the manager and every player", {{"instance", nullptr}});
        return;
    }
    const int status = session.timed("bridgePlrShutdown", [&arguments] {
        return bridgePlrShutdown(arguments.instance.c_str(), arguments.flag ? 1 : 0);
    });
    if (status != BRIDGE_SUCCESS) {
        session.failStatus(ExitCode::Program, "not asked", status);
        return;
    }
    session.confirm("asked the player of " + arguments.instance,
                    {{"instance", arguments.instance}});
}

void declare(CLI::App& parser, Session& session) {
    const auto arguments = std::make_shared<Arguments>();
    CLI::Option* instance =
        parser.add_option("INSTANCE", arguments->instance, "Only the player of this instance");
    parser.add_flag("--flag", arguments->flag, "The flag that the player is handed")
        ->needs(instance);
    parser.callback([&session, arguments, instance] {
        arguments->isForOne = instance->count() > 0;
        run(session, *arguments);
    });
}

}  // namespace

extern const Command commandShutdown;
const Command commandShutdown{"", "shutdown", "Asks running programs to shut down",
                              "Example: bridgectl shutdown Nougat64\n"
                              "Whether a program was there to be asked is in the log only.",
                              declare};
