// A host that uses the C++ wrapper: cpp_host DATA-FOLDER SCENE
//
//     all      prints every event
//     throws   a callback that throws
//     raw      two callbacks of the C interface, one of which throws
//     empty    only the last callback
//     calls    the results of the other functions
//     files    initialisations with other files, and a commit to another
#include <cstdio>
#include <exception>
#include <stdexcept>
#include <string>
#include <string_view>
#include <tuple>

#include "event_printer.hpp"
#include "support/NoCallbacks.h"
#include "support/RegistrySandbox.h"
#include "support/event_table.h"

namespace {

void playAll(EventPrinter& printer) {
    bridge::registerCallbacks(printer.callbacks());
    printer.waitFor(KNOWN_EVENT_COUNT);
}

void playThrows(EventPrinter& printer) {
    bridge::Callbacks callbacks = printer.callbacks();
    callbacks.appDisplayed = [](std::string_view, std::string_view) {
        throw std::runtime_error("the host's own");
    };
    callbacks.failed = [](std::exception_ptr exception) {
        try {
            std::rethrow_exception(exception);
        } catch (const std::exception& e) {
            std::printf("failed: %s\n", e.what());
        }
    };
    bridge::registerCallbacks(callbacks);
    printer.waitFor(KNOWN_EVENT_COUNT - 1);
}

void playRaw(EventPrinter& printer) {
    static EventPrinter* const out = &printer;
    static bridge::Callbacks& callbacks = *new bridge::Callbacks(out->callbacks());
    auto slots = noCallbacks(bridgeRegisterCallbacks);
    std::get<7>(slots) = [](const char*, const char*) {
        throw std::runtime_error("through the library");
    };
    std::get<8>(slots) = [](const char* instance, const char* emailId, bridge_i32 action) {
        callbacks.accountListUpdated(instance, emailId, action);
    };
    std::apply(bridgeRegisterCallbacks, slots);
    printer.waitFor(1);
}

void playEmpty(EventPrinter& printer) {
    bridge::Callbacks callbacks;
    callbacks.accountListUpdated = printer.callbacks().accountListUpdated;
    bridge::registerCallbacks(callbacks);
    printer.waitFor(1);
}

void playCalls() {
    using namespace bridge;
    std::printf("locale %s\n", conf::getString("vtr.locale").valueOr("none").c_str());
    std::printf("set %d %d %d %d\n", conf::setString("vtr.locale", "de-DE").ok(),
                conf::setI32("vtr.instance.Nougat64.dpi", 320).ok(),
                conf::setBool("vtr.enable_adb_access", true).ok(),
                conf::setMultiString("vtr.shared_folders", "a,b").ok());
    std::printf("get %d %d %s\n", conf::getI32("vtr.instance.Nougat64.dpi"),
                conf::getBool("vtr.enable_adb_access"),
                (*conf::getMultiString("vtr.shared_folders")).c_str());
    std::printf("commit %d\n", conf::commit().code());
    std::printf("instances %d\n", instances()->str().find("Nougat64") != std::string::npos);
    std::printf("apps %d\n", installedApps("Nougat64").code());
    std::printf("launch %d %d %d %d %d %d %d\n", launchApp("Nougat64", "p").code(),
                launchAppStore("Nougat64", "s", "p").code(), launchUrl("Nougat64", "u").code(),
                installApk("Nougat64", "f").code(), uninstallApp("Nougat64", "p").code(),
                installImage("Nougat32").code(),
                createFreshInstance({"Nougat64", "2", "2048", "aga", "dx", "s21"}).code());
    std::printf("shutdown %d\n", shutdownPlayer("Nougat64").code());
    shutdown();
}

void playFiles(const std::string& folder) {
    using namespace bridge;
    const auto locale = [] { return conf::getString("vtr.locale").valueOr("none"); };
    std::printf("without %d \"%s\"\n", initWithoutFile(Client::Installer).code(), locale().c_str());
    std::printf("without, with a log %d\n",
                initWithoutFile(Client::Installer, (folder + "\\first.log").c_str()).code());
    std::printf("log %d \"%s\"\n", initWithLog(Client::Installer, folder + "\\second.log").code(),
                locale().c_str());
    std::printf("committed %d\n", conf::commitToFile(folder + "\\copy.conf").code());
}

void play(const std::string& scene, const std::string& folder) {
    EventPrinter& printer = *new EventPrinter;
    if (scene == "all") playAll(printer);
    if (scene == "throws") playThrows(printer);
    if (scene == "raw") playRaw(printer);
    if (scene == "empty") playEmpty(printer);
    if (scene == "calls") playCalls();
    if (scene == "files") playFiles(folder);
}

}  // namespace

int main(int, char** arguments) {
    std::setvbuf(stdout, nullptr, _IONBF, 0);
    RegistrySandbox registry;
    registry.set("UserDefinedDir", arguments[1]);
    registry.set("InstallDir", "C:\\None\\");
    std::printf("init %d\n", bridge::init(bridge::Client::Helper).code());
    play(arguments[2], arguments[1]);
    bridge::finish();
    std::printf("finished\n");
    return 0;
}
