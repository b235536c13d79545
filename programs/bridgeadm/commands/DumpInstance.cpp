// bridgeadm dump-instance NAME [--json]
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "Session.h"
#include "conf/Conf.h"
#include "shared/Command.h"
#include "shared/Joined.h"
#include "shared/JsonValue.h"
#include "shared/OptionParser.h"
#include "xpl/Xerr.h"

namespace {

// The dump of the current instance. Empty after an error.
std::optional<std::string> dump(Session& session) {
    std::uint32_t size = 0;
    XErr err = confGetInstanceAllConfigs(session.store(), nullptr, 0, size);
    std::string text(size, '\0');
    if (err == XERR_FBIG) {
        err = confGetInstanceAllConfigs(session.store(), text.data(), size, size);
    }
    if (err != XERR_SUCCESS) {
        session.failStatus(ExitCode::Library, "not dumped", err);
        return std::nullopt;
    }
    text.pop_back();  // the NUL
    return text;
}

// confGetInstanceAllConfigs() ends the process at a line that is too long.
bool everyLineFits(Session& session) {
    const std::vector<std::string> keys = confKeysTooLongForDump(session.store());
    return keys.empty() ||
           session.fail(ExitCode::BadValue, "too long for a dump: " + joined(keys, " "));
}

void printJson(Session& session, const std::string& text) {
    JsonArray array;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t equals = line.find('=');
        array.push_back(
            JsonObject{{"key", line.substr(0, equals)}, {"value", line.substr(equals + 1)}});
    }
    session.printJson(array);
}

void run(Session& session, const std::string& instance, bool json) {
    if (!session.startWithConfiguration() || !session.requireInstance(instance)) return;
    if (const XErr err = confSetCurrentInstance(session.store(), instance); err != XERR_SUCCESS) {
        session.failInstance(instance);
        return;
    }
    if (!everyLineFits(session)) return;
    const std::optional<std::string> text = dump(session);
    if (!text) return;
    if (json) {
        printJson(session, *text);
    } else {
        session.print(*text);
    }
}

void declare(OptionParser& parser, Session& session) {
    const auto instance = std::make_shared<std::string>();
    const auto json = std::make_shared<bool>(false);
    parser.add("NAME", *instance, "Instance to dump").required();
    parser.addFlag("--json", *json, "Print JSON: an array of objects");
    parser.onRun([&session, instance, json] { run(session, *instance, *json); });
}

}  // namespace

extern const Command commandDumpInstance;
const Command commandDumpInstance{
    "Instances",
    "",
    "dump-instance",
    "Print the settings of an instance and the global settings",
    "Example: bridgeadm dump-instance Nougat64\n"
    "Example: bridgeadm dump-instance Nougat64 --json\n"
    "Prints one setting per line, in the form that the product's programs exchange.",
    declare};
