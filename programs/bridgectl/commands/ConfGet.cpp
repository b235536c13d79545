// bridgectl conf get KEY
#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "Command.h"
#include "KeyValue.h"

namespace {

void run(Session& session, const std::string& key) {
    if (!session.start()) return;
    const std::optional<KeyInfo> info = session.requireKey(key);
    if (!info) return;
    if (info->state == KeyState::Invalid) {
        session.failInvalid(*info);
        return;
    }
    const bool isPrinted = session.json ? session.printJson(keyJson(session, *info))
                                        : session.print(shownValue(session, *info) + "\n");
    if (isPrinted && info->state == KeyState::Unset) session.exitCode = ExitCode::Unset;
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
