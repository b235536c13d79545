// bridgectl conf set KEY VALUE [--to FILE]
#include <memory>
#include <optional>
#include <string>

#include "Configuration.h"
#include "KeyChange.h"
#include "Session.h"
#include "conf/ConfCatalogue.h"
#include "conf/ConfKey.h"
#include "conf/ConfText.h"
#include "shared/Command.h"
#include "shared/OptionParser.h"
#include "utl/UtlImages.h"
#include "xpl/Xerr.h"

namespace {

struct Arguments {
    std::string key;
    std::string value;
    std::string file;  // empty: the product's configuration
};

// The library would create an unknown instance without a disk or an image. An instance of an
// unknown image would end every host that lists the instances. Without the configuration file, any
// instance is possible.
bool instanceIsPossible(Session& session, const std::string& key) {
    const ConfKey parts = confSplitKey(key);
    if (parts.scope != ConfScope::Instance || session.configuration().find(key)) return true;
    if (utlFindImageTrait(utlImageNameOfInstance(parts.instance)) == nullptr) {
        return session.fail(ExitCode::UnknownName,
                            "instance " + std::string(parts.instance) + " has an unknown image");
    }
    return session.noConf || session.failInstance(parts.instance);
}

// The change to store. Empty after an error.
std::optional<KeyInfo> checkedChange(Session& session, const Arguments& arguments) {
    const std::string& key = arguments.key;
    const std::optional<ConfType> type = session.requireType(key);
    if (!type || !instanceIsPossible(session, key)) return std::nullopt;
    const std::optional<std::string> stored = storedForm(*type, arguments.value);
    if (!stored) {
        session.fail(ExitCode::BadValue, key + " cannot be \"" + arguments.value +
                                             "\": its type is " + typeName(*type));
        return std::nullopt;
    }
    if (const XErr err = confCheckEntry(key, *stored); err != XERR_SUCCESS) {
        session.failStatus(ExitCode::BadValue,
                           key + " and its value do not fit in one line of the file", err);
        return std::nullopt;
    }
    return KeyInfo{key, *type, KeyState::Value, *stored};
}

void run(Session& session, const Arguments& arguments) {
    if (session.noConf && arguments.file.empty()) {
        session.fail(ExitCode::Usage, "--no-conf leaves no file to commit to: add --to FILE");
        return;
    }
    if (!session.start()) return;
    const std::optional<KeyInfo> change = checkedChange(session, arguments);
    if (!change) return;
    commitChange(session, *change, arguments.file);
}

void declare(OptionParser& parser, Session& session) {
    const auto arguments = std::make_shared<Arguments>();
    parser.add("KEY", arguments->key, "Full key, such as vtr.locale").required();
    parser.add("VALUE", arguments->value, "New value; true or false for a bool").required();
    parser.add("--to", arguments->file, "Write the configuration to this file instead")
        .taking("FILE")
        .notEmpty();
    parser.onRun([&session, arguments] { run(session, *arguments); });
}

}  // namespace

extern const Command commandConfSet;
const Command commandConfSet{
    "Configuration",
    "conf",
    "set",
    "Set a key and commit the change",
    "Example: bridgectl conf set vtr.enable_adb_access true\n"
    "Example: bridgectl conf set vtr.instance.Nougat64.dpi 320\n"
    "Example: bridgectl conf set vtr.locale -- -x\n"
    "A value that begins with \"-\" comes after \"--\". The instance of a key must exist:\n"
    "`bridgectl create-instance` creates one, `bridgeadm copy-instance` copies one.",
    declare};
