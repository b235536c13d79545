// bridgeadm update-app INSTANCE PACKAGE [--activity TEXT] [--label TEXT] [--version-code NUMBER]
// [--version-name TEXT] [--icon FILE]
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "Session.h"
#include "appc/Appc.h"
#include "shared/Command.h"
#include "shared/OptionParser.h"
#include "utl/UtlFolders.h"
#include "xpl/Xerr.h"
#include "xpl/Xfile.h"

namespace {

struct Arguments {
    std::string instance;
    std::string package;
    std::optional<std::string> activity;
    std::optional<std::string> label;
    std::optional<std::int32_t> versionCode;
    std::optional<std::string> versionName;
    std::string icon;  // empty: it does not change
};

struct App {
    std::string activity;
    std::string label;
    std::int32_t versionCode = 0;
    std::string versionName;
};

// The app's current values, replaced by those of the command line.
App updatedApp(const Arguments& arguments) {
    App app;
    static_cast<void>(appcGetApp(appcStore(), arguments.package, &app.activity, &app.label,
                                 &app.versionCode, &app.versionName, /*iconFileName=*/nullptr));
    return {arguments.activity.value_or(app.activity), arguments.label.value_or(app.label),
            arguments.versionCode.value_or(app.versionCode),
            arguments.versionName.value_or(app.versionName)};
}

std::string iconPath(const std::string& icon) { return utlSharedDir() + icon; }

bool requireIcon(Session& session, const std::string& icon) {
    return icon.empty() || xfileExists(iconPath(icon)) == XERR_SUCCESS ||
           session.fail(ExitCode::UnknownName, "no such file in the shared folder: " + icon);
}

// appcUpdateApp() does not report this.
bool iconWasMoved(Session& session, const std::string& icon) {
    return icon.empty() || xfileExists(iconPath(icon)) != XERR_SUCCESS ||
           session.fail(ExitCode::Library, "saved, but the icon could not be moved: " + icon);
}

void run(Session& session, const Arguments& arguments) {
    if (!session.requirePackageName(arguments.package)) return;
    if (!session.openCache(arguments.instance) || !requireIcon(session, arguments.icon)) return;
    const App app = updatedApp(arguments);
    const XErr err = appcUpdateApp(appcStore(), arguments.package, app.activity, app.label,
                                   app.versionCode, app.versionName, arguments.icon);
    if (!session.saved(err) || !iconWasMoved(session, arguments.icon)) return;
    session.print("updated " + arguments.package + " of " + arguments.instance + "\n");
}

void declare(OptionParser& parser, Session& session) {
    const auto arguments = std::make_shared<Arguments>();
    parser.add("INSTANCE", arguments->instance, "Instance name").required();
    parser.add("PACKAGE", arguments->package, "Android package name").required();
    parser.add("--activity", arguments->activity, "Launch activity");
    parser.add("--label", arguments->label, "Display name");
    parser.add("--version-code", arguments->versionCode, "Version number for Android");
    parser.add("--version-name", arguments->versionName, "Version that users see");
    parser
        .add("--icon", arguments->icon,
             "Icon file in the shared folder, which is moved to the cache")
        .taking("FILE")
        .notEmpty();
    parser.onRun([&session, arguments] { run(session, *arguments); });
}

}  // namespace

extern const Command commandUpdateApp;
const Command commandUpdateApp{
    "App caches",
    "",
    "update-app",
    "Add an app to the app cache of an instance, or change it",
    "Example: bridgeadm update-app Nougat64 com.example.app --label Example --version-code 3\n"
    "Without an option, the value does not change; in a new app it is empty.",
    declare};
