// bridgectl conf unset KEY
#include <memory>
#include <optional>
#include <string>

#include "Configuration.h"
#include "KeyChange.h"
#include "Session.h"
#include "conf/ConfCatalogue.h"
#include "shared/Command.h"
#include "shared/OptionParser.h"

namespace {

// The library's functions for bools and numbers cannot store an empty text.
bool canBeStored(Session& session, const KeyInfo& key, const std::string& text) {
    const bool isText = key.type == ConfType::String || key.type == ConfType::MultiString;
    return !text.empty() || isText ||
           session.fail(ExitCode::BadValue,
                        key.key +
                            " has an empty default, which the library cannot store: its "
                            "type is " +
                            typeName(key.type),
                        "set it to a value: bridgectl conf set " + key.key + " " +
                            (key.type == ConfType::Bool ? "false" : "0"));
}

void run(Session& session, const std::string& name) {
    if (session.noConf) {
        session.fail(ExitCode::Usage, "--no-conf leaves no file to commit to");
        return;
    }
    if (!session.start()) return;
    const std::optional<KeyInfo> key = session.requireKey(name);
    if (!key) return;
    const std::string text = session.configuration().defaultOf(name);
    if (!canBeStored(session, *key, text)) return;
    commitChange(session, {key->key, key->type, KeyState::Value, text}, /*file=*/{});
}

void declare(OptionParser& parser, Session& session) {
    const auto key = std::make_shared<std::string>();
    parser.add("KEY", *key, "Full key, such as vtr.locale").required();
    parser.onRun([&session, key] { run(session, *key); });
}

}  // namespace

extern const Command commandConfUnset;
const Command commandConfUnset{
    "Configuration",
    "conf",
    "unset",
    "Reset a key to its default and commit the change",
    "Example: bridgectl conf unset vtr.locale\n"
    "`bridgectl catalogue` lists the defaults. The library cannot store an empty bool or\n"
    "number, so a key of these types with an empty default cannot be reset.",
    declare};
