// What bridge.hpp adds to the library: wrapper_host DATA-FOLDER INSTALL-FOLDER SCENE
#include <algorithm>
#include <bridge/bridge.hpp>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <future>
#include <map>
#include <mutex>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "support/RegistrySandbox.h"

// After bridge.hpp, as hosts may include it: complete, with its own macros.
#include <windows.h>
static_assert(sizeof(WNDCLASSW) > 0 && sizeof(SERVICE_STATUS) > 0, "no part of it is left out");

namespace {

using namespace bridge;
using std::chrono::milliseconds;

constexpr milliseconds kLimit = std::chrono::seconds(60);  // several times the longest wait

const FreshInstance kFresh{"Nougat64", "2", "2048", "aga", "dx", "s21"};

void say(const std::string& line) { std::printf("%s\n", line.c_str()); }

// The type and text of what a call throws.
template <typename Call>
std::string thrownBy(Call call) {
    try {
        call();
    } catch (const KeyError& error) {
        return std::string("KeyError ") + error.what();
    } catch (const Error& error) {
        return std::string("Error ") + error.what();
    } catch (const std::logic_error& error) {
        return std::string("logic_error ") + error.what();
    }
    return "nothing";
}

// Whether a key accepts a value, at compile time.
template <typename Key, typename Value, typename = void>
constexpr bool kTakes = false;
template <typename Key, typename Value>
constexpr bool kTakes<
    Key, Value, std::void_t<decltype(conf::set(std::declval<Key>(), std::declval<Value>()))>> =
    true;

using TypedKeys = keys::InstanceKeys;
static_assert(kTakes<decltype(keys::enable_adb_access), bool>);
static_assert(!kTakes<decltype(keys::enable_adb_access), int>);
static_assert(!kTakes<decltype(keys::enable_adb_access), const char*>);
static_assert(kTakes<decltype(TypedKeys::dpi), std::int32_t>);
static_assert(!kTakes<decltype(TypedKeys::dpi), bool>);
static_assert(!kTakes<decltype(TypedKeys::dpi), double>);
static_assert(kTakes<decltype(keys::locale), const char*>);
static_assert(kTakes<decltype(keys::locale), std::string>);
static_assert(!kTakes<decltype(keys::locale), int>);
static_assert(kTakes<decltype(keys::shared_folders), std::vector<std::string>>);
static_assert(!kTakes<decltype(keys::shared_folders), std::string>);
static_assert(std::is_same_v<decltype(conf::get(keys::enable_adb_access)), bool>);
static_assert(std::is_same_v<decltype(conf::get(std::declval<TypedKeys>().dpi)), std::int32_t>);

void playTyped() {
    const keys::InstanceKeys nougat = keys::instance("Nougat64");
    say(nougat.status_adb_port.text() + " " + keys::status_raw_mode.text());
    say(std::string(nameOf(nougat.dpi.property().type)) + " " +
        std::string(nougat.dpi.property().defaultValue) + " " +
        std::string(nougat.dpi.property().unit) + " " +
        std::string(nougat.abi_list.property().allowed));
    conf::set(keys::enable_adb_access, true).orThrow();
    conf::set(nougat.dpi, 320).orThrow();
    conf::set(nougat.display_name, "Größe").orThrow();
    conf::set(keys::shared_folders, {"a", "", "b"}).orThrow();
    std::string folders;
    for (const std::string& one : conf::get(keys::shared_folders)) folders += "[" + one + "]";
    say(std::to_string(conf::get(keys::enable_adb_access)) + " " +
        std::to_string(conf::get(nougat.dpi)) + " " + conf::get(nougat.display_name) + " " +
        folders);
    say(thrownBy([] { conf::get(keys::instance("Nougat65").dpi); }));
}

void playWrongKeys() {
    say(thrownBy([] { conf::getI64("vtr.locale"); }));
    say(thrownBy([] { conf::setI64("vtr.locale", 1).ok(); }));
    for (const char* key :
         {"vtr.locael", "vtr.loc", "vtr.enable_adb_accexxx", "vtr.instance.X.display_name",
          "vtr.instance.Nougat64.dpx", "vtr.instance.Nougat64", "locale", ""}) {
        say(thrownBy([&] { conf::setString(key, "x").ok(); }));
    }
    try {
        conf::getString("vtr.locael").ok();
    } catch (const KeyError& error) {
        say(error.key() + " " + error.suggestion());
    }
}

void playErrors(const std::string& folder) {
    conf::setString("vtr.locale", "a\nb").orThrow();
    say(thrownBy([] { conf::commit().orThrow(); }));
    say(thrownBy([&] { conf::commitToFile(folder + "\\copy.conf").orThrow(); }));
    say(thrownBy([] { launchApp("Nougat64", "p").orThrow(); }));
    say(thrownBy([] { installApk("Nougat64", "C:\\a.apk").orThrow(); }));
    say(thrownBy([] { installImage("Nougat32").orThrow(); }));
    say(thrownBy([] { installedApps("Broken").value(); }));
    say(Error("bridgeLaunchApp", 101223, "").what());
    const Error error = launchApp("Nougat64", "p").error();
    say(error.operation() + "|" + std::to_string(error.code()) + "|" + std::string(error.name()) +
        "|" + error.text());
    say(std::to_string(appList("Broken").code()));
}

// A file that another program changes after the start.
void playChanged(const std::string& folder) {
    const auto write = [&folder](const char* content) {
        std::FILE* const file = std::fopen((folder + "\\vantrel.conf").c_str(), "wb");
        std::fputs(content, file);
        std::fclose(file);
    };
    write("vtr.instance.Nougat64.dpi=\"240\"\nvtr.instance.Nougat64_2.dpi=\"300\"\n");
    say(thrownBy([] { conf::getI32("vtr.instance.Nougat64_2.dpi"); }));
    say(thrownBy([] { conf::getBool("vtr.instance.Nougat64_2.enable_vsync"); }));
    conf::setBool("vtr.status.raw_mode", true).orThrow();
    conf::commit().orThrow();
    say(std::to_string(conf::getI32("vtr.instance.Nougat64_2.dpi")) + " " +
        std::to_string(conf::getBool("vtr.status.raw_mode")));
    write("vtr.instance.Nougat64.dpi=\"abc\"\nvtr.status.raw_mode=\"x\"\n");
    conf::setI32("vtr.instance.Nougat64.max_fps", 30).orThrow();
    conf::commit().orThrow();
    say(thrownBy([] { conf::getI32("vtr.instance.Nougat64.dpi"); }));
    say(thrownBy([] { conf::getBool("vtr.status.raw_mode"); }));
    // A value that the file no longer has stays until the next initialisation.
    write("vtr.instance.Nougat64.max_fps=\"60\"\n");
    conf::setI32("vtr.instance.Nougat64.max_fps", 20).orThrow();
    conf::commit().orThrow();
    say(thrownBy([] { conf::getI32("vtr.instance.Nougat64.dpi"); }));
    write("vtr.instance.Nougat64.dpi=\"240\"\n");
    init(Client::Helper).orThrow();
    say(std::to_string(conf::getI32("vtr.instance.Nougat64.dpi")));
}

void listenOrSay() {
    const ListenResult result = listen({}, kLimit);
    say(result.ok ? "listening" : result.text);
}

std::string namesOf(EventQueue& queue, int count) {
    std::string names;
    for (int i = 0; i < count; ++i) names.append(nameOf(queue.pop(kLimit).value())).append(" ");
    return names;
}

void playQueue() {
    say(thrownBy([] { EventQueue queue(std::vector<std::string>{"appdisplayed"}); }));
    EventQueue all;
    EventQueue some(std::vector<std::string>{"appDisplayed", "instanceListUpdated"});
    EventQueue few(1);
    say(all.pop(milliseconds(1)) ? "an event" : "none yet");
    listenOrSay();
    say(namesOf(all, 3));
    say(namesOf(some, 2));
    say(namesOf(few, 1));
    try {
        few.pop(kLimit);
    } catch (const EventOverflow& error) {
        say(error.what());
    }
    auto waiting = std::async(std::launch::async, [&all] { return all.pop().has_value(); });
    say(all.hasEnded() ? "ended" : "goes on");
    finish();
    say(waiting.get() ? "an event" : "no event after the end");
    say(all.hasEnded() ? "ended" : "goes on");
    EventQueue late;
    say(late.pop() ? "an event" : "none after the end");
}

// What a callback must not do.
void playInsideACallback() {
    static std::promise<void> done;
    Callbacks callbacks;
    callbacks.appDisplayed = [](std::string_view, std::string_view) {
        static EventQueue queue;
        say(thrownBy([] { queue.pop(milliseconds(1)); }));
        say(thrownBy([] { static_cast<void>(listen()); }));
        say(thrownBy([] { work::launchApp("Nougat64", "p").wait(milliseconds(1)); }));
        finish();
        say(queue.hasEnded() ? "ended" : "goes on");
        done.set_value();
    };
    if (listen(callbacks, kLimit).ok) say("listening");
    done.get_future().wait_for(kLimit);
}

template <typename Outcome>
std::string statusOf(const Work<Outcome>& work) {
    const auto outcome = work.wait(kLimit);
    return outcome ? std::to_string(outcome->status) : "none";
}

// The test sends the events when the host listens.
void playWorks() {
    say(thrownBy([] { work::launchApp("Nougat64", "p").wait(); }));
    EventQueue events;
    const auto first = work::createFreshInstance(kFresh);
    { const auto forgotten = work::createFreshInstance(kFresh); }
    const auto third = work::createFreshInstance(kFresh);
    const auto one = work::installApk("Nougat64", "C:\\a.apk");
    const auto same = work::installApk("Nougat64", "C:\\a.apk");
    const auto other = work::installApk("Nougat64", "C:\\b.apk");
    std::string progress;
    const auto image = work::installImage("Nougat32", [&progress](const auto& event) {
        progress += std::to_string(static_cast<int>(event.progress)) + " ";
    });
    listenOrSay();
    say("created " + statusOf(first) + " " + statusOf(third));
    say("installed " + statusOf(one) + " " + statusOf(same) + " " + statusOf(one));
    say("image " + statusOf(image) + " after " + progress);
    say(other.wait(milliseconds(1)) ? "an outcome" : "time-out");
    auto waiting = std::async(std::launch::async, [&other] { return other.wait().has_value(); });
    finish();
    say(waiting.get() ? "an outcome" : "no outcome after the end");
}

void playNoProgram() {
    const auto work = work::createFreshInstance(kFresh);
    say(std::to_string(work.status().code()));
    say(thrownBy([&work] { work.wait(); }));
}

void playListen() {
    const ListenResult first = listen({}, kLimit);
    say(std::string(first.ok ? "listening " : first.text) +
        (first.processId == ::GetCurrentProcessId() ? "itself" : "another"));
    const ListenResult again = listen({}, kLimit);
    say(again.ok ? "listening" : again.text);
    finish();
    const ListenResult ended = listen({}, milliseconds(100));
    say(ended.ok ? "listening" : ended.text);
}

// Serves the events until it is killed.
void playHold() {
    listenOrSay();
    EventQueue queue;
    queue.pop();
}

void playPreflight(const std::string& folder) {
    PreflightOptions own;
    own.noConfFile = true;
    own.logFilePath = folder + "\\own.log";
    say(std::to_string(preflight(Client::Helper).size()) + " " +
        std::to_string(preflight(Client::Helper, own).size()));
    for (const Problem& one : preflight(Client::Helper)) say(one.what + "|" + one.remedy);
    say(Error("bridgeApiInit", BRIDGE_INVALID_ARGUMENT, {}).what());
}

void play(const std::string& scene, const std::string& folder) {
    const std::map<std::string, void (*)()> scenes = {
        {"typed", playTyped},   {"wrong keys", playWrongKeys},
        {"queue", playQueue},   {"inside", playInsideACallback},
        {"works", playWorks},   {"no program", playNoProgram},
        {"listen", playListen}, {"hold", playHold}};
    if (scene == "errors") return playErrors(folder);
    if (scene == "changed") return playChanged(folder);
    scenes.at(scene)();
}

}  // namespace

int main(int, char** arguments) {
    std::setvbuf(stdout, nullptr, _IONBF, 0);
    RegistrySandbox registry;
    registry.set("UserDefinedDir", arguments[1]);
    registry.set("InstallDir", arguments[2]);
    if (std::string(arguments[3]) == "preflight") {
        playPreflight(arguments[1]);
    } else {
        say(thrownBy([] { static_cast<void>(listen()); }));
        init(Client::Helper).orThrow();
        play(arguments[3], arguments[1]);
        finish();
    }
    say("finished");
    return 0;
}
