// bridgectl conf get KEY
#include <CLI/CLI.hpp>

#include "Command.h"
#include "Console.h"
#include "Session.h"

namespace {

void run(Session& session, const std::string& key) {
    if (!session.start()) return;
    const std::optional<KeyInfo> info = session.requireKey(key);
    if (!info) return;
    switch (info->state) {
        case KeyState::Value:
            printOut(readValue(*info) + "\n");
            return;
        case KeyState::Unset:
            printOut("unset\n");
            session.exitCode = ExitCode::Unset;
            return;
        case KeyState::Invalid:
            session.failInvalid(*info);
    }
}

void declare(CLI::App& parser, Session& session) {
    const auto key = std::make_shared<std::string>();
    parser.add_option("KEY", *key, "Full key")->required();
    parser.callback([&session, key] { run(session, *key); });
}

}  // namespace

extern const Command commandConfGet;
const Command commandConfGet{"conf", "get", "Prints the value of a key",
                             "Example: bridgectl conf get vtr.instance.Nougat64.dpi", declare};
