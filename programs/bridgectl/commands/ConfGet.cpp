// bridgectl conf get KEY
#include <memory>
#include <optional>
#include <string>

#include "Configuration.h"
#include "KeyValue.h"
#include "shared/Command.h"
#include "shared/OptionParser.h"

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

void declare(OptionParser& parser, Session& session) {
    const auto key = std::make_shared<std::string>();
    parser.add("KEY", *key, "Full key, such as vtr.locale").required();
    parser.onRun([&session, key] { run(session, *key); });
}

}  // namespace

extern const Command commandConfGet;
const Command commandConfGet{"Configuration",
                             "conf",
                             "get",
                             "Print the value of a key",
                             "Example: bridgectl conf get vtr.locale\n"
                             "Example: bridgectl conf get vtr.instance.Nougat64.dpi --json\n"
                             "A key without a value prints \"unset\" and ends with exit code 7.",
                             declare};
