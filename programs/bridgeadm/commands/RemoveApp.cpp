// bridgeadm remove-app INSTANCE PACKAGE
#include <memory>
#include <string>

#include "Session.h"
#include "appc/Appc.h"
#include "shared/Command.h"
#include "shared/OptionParser.h"
#include "xpl/Xerr.h"

namespace {

struct Arguments {
    std::string instance;
    std::string package;
};

// appcRemoveApp() succeeds for an app that does not exist.
bool requireApp(Session& session, const std::string& package) {
    return appcGetApp(appcStore(), package, nullptr, nullptr, nullptr, nullptr, nullptr) ==
               XERR_SUCCESS ||
           session.fail(ExitCode::UnknownName, "no such app: " + package);
}

void run(Session& session, const Arguments& arguments) {
    if (!session.requirePackageName(arguments.package)) return;
    if (!session.openCache(arguments.instance) || !requireApp(session, arguments.package)) return;
    if (!session.saved(appcRemoveApp(appcStore(), arguments.package))) return;
    session.print("removed " + arguments.package + " from " + arguments.instance + "\n");
}

void declare(OptionParser& parser, Session& session) {
    const auto arguments = std::make_shared<Arguments>();
    parser.add("INSTANCE", arguments->instance, "Instance name").required();
    parser.add("PACKAGE", arguments->package, "Android package name").required();
    parser.onRun([&session, arguments] { run(session, *arguments); });
}

}  // namespace

extern const Command commandRemoveApp;
const Command commandRemoveApp{"App caches",
                               "",
                               "remove-app",
                               "Remove an app from the app cache of an instance",
                               "Example: bridgeadm remove-app Nougat64 com.example.app\n"
                               "The app stays installed. Its icon is deleted.",
                               declare};
