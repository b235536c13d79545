// Plays the steps of a scenario with the C++ interface: scenario_cpp DATA-FOLDER INSTALL-FOLDER
// STEP... Tabs separate the words of a step, which scenarios.txt describes.
#include <fcntl.h>
#include <io.h>

#include <algorithm>
#include <bridge/bridge.hpp>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "support/Platform.h"
#include "support/RegistrySandbox.h"

namespace {

using Words = std::vector<std::string>;

constexpr auto kLimit = std::chrono::seconds(30);
constexpr auto kShortLimit = std::chrono::milliseconds(100);

void say(const std::string& line) { std::printf("%s\n", line.c_str()); }

Words split(std::string_view text, char separator) {
    Words parts;
    while (true) {
        const std::size_t end = text.find(separator);
        parts.emplace_back(text.substr(0, end));
        if (end == std::string_view::npos) return parts;
        text.remove_prefix(end + 1);
    }
}

std::string replaced(std::string text, char from, char to) {
    std::replace(text.begin(), text.end(), from, to);
    return text;
}

const char* shown(bool value) { return value ? "true" : "false"; }

std::string errorLine(const bridge::Error& error) {
    return "error " + std::to_string(error.code()) + " " + std::string(error.name());
}

void sayStatus(const bridge::Status& status, const char* done) {
    say(status.ok() ? done : errorLine(status.error()));
}

bridge::Client clientOf(const std::string& id) {
    for (const auto client :
         {bridge::Client::Launcher, bridge::Client::Installer, bridge::Client::LogCollector,
          bridge::Client::Helper, bridge::Client::Uninstaller}) {
        if (id == bridge::clientId(client)) return client;
    }
    throw std::runtime_error("no client " + id);
}

// How values of a type are read and set as texts.
struct Access {
    std::function<std::string(const std::string& key)> get;
    std::function<bridge::Status(const std::string& key, const std::string& value)> set;
};

const Access& accessTo(const std::string& type) {
    namespace conf = bridge::conf;
    static const std::map<std::string, Access> all = {
        {"bool",
         {[](auto& key) { return shown(conf::getBool(key)); },
          [](auto& key, auto& value) { return conf::setBool(key, value == "true"); }}},
        {"i32",
         {[](auto& key) { return std::to_string(conf::getI32(key)); },
          [](auto& key, auto& value) { return conf::setI32(key, std::atoi(value.c_str())); }}},
        {"i64",
         {[](auto& key) { return std::to_string(conf::getI64(key)); },
          [](auto& key, auto& value) { return conf::setI64(key, std::atoll(value.c_str())); }}},
        {"string",
         {[](auto& key) { return conf::getString(key).value(); },
          [](auto& key, auto& value) { return conf::setString(key, value); }}},
        {"multi-string",
         {[](auto& key) { return replaced(conf::getMultiString(key).value(), ',', '|'); },
          [](auto& key, auto& value) {
              return conf::setMultiString(key, replaced(value, '|', ','));
          }}}};
    return all.at(type);
}

// The type that a step names, or the catalogue's. An unknown key is read as a text.
std::string typeOf(const Words& words, std::size_t index) {
    if (words.size() > index) return words[index];
    const auto parts = bridge::detail::partsOf(words[1]);
    const auto* const property = parts ? bridge::detail::findProperty(*parts) : nullptr;
    return property == nullptr ? "string" : std::string(bridge::nameOf(property->type));
}

std::string outcome(const bridge::events::AppDisplayed& e) {
    return "displayed " + e.instance + " " + e.package;
}
std::string outcome(const bridge::events::AppUninstalled& /*e*/) { return "uninstalled"; }
std::string outcome(const bridge::events::ApkInstallCompleted& e) {
    return "installed " + std::to_string(e.status);
}
std::string outcome(const bridge::events::InstallImageProgress& e) {
    return "image " + std::to_string(e.status);
}
std::string outcome(const bridge::events::CreateInstanceCompleted& e) {
    return "created " + std::to_string(e.status) + " " + e.instance;
}

template <typename Event>
void sayOutcome(const bridge::Work<Event>& work, const Words& words) {
    const auto event = work.wait(words.back() == "short" ? kShortLimit : kLimit);
    say(event ? outcome(*event) : "time-out");
}

std::string text(const std::string& value) { return value; }
std::string text(std::int32_t value) { return std::to_string(value); }
std::string text(bool value) { return value ? "1" : "0"; }
std::string text(double value) {
    char digits[64];
    std::snprintf(digits, sizeof digits, "%.3f", value);
    return digits;
}

template <typename... Values>
std::string joined(const Values&... values) {
    std::string all;
    const auto add = [&all](const std::string& one) { all.append(one).append("|"); };
    (add(text(values)), ...);
    if (!all.empty()) all.pop_back();
    return all;
}

// A function for each kind of event.
template <typename... Functions>
struct Overloaded : Functions... {
    using Functions::operator()...;
};
template <typename... Functions>
Overloaded(Functions...) -> Overloaded<Functions...>;

std::string valuesOf(const bridge::Event& event) {
    using namespace bridge::events;
    const Overloaded values{
        [](const AppInstalled& e) {
            return joined(e.instance, e.package, e.activity, e.appLabel, e.versionCode,
                          e.versionName, e.iconFilePath, e.isUpdate);
        },
        [](const AppUninstalled& e) { return joined(e.instance, e.package); },
        [](const ApkInstallCompleted& e) { return joined(e.instance, e.status, e.apkFilePath); },
        [](const InstanceListUpdated& /*e*/) { return joined(); },
        [](const InstallImageProgress& e) { return joined(e.imageName, e.status, e.progress); },
        [](const CreateInstanceCompleted& e) { return joined(e.status, e.instance); },
        [](const InstanceConfigurationChanged& e) { return joined(e.instance); },
        [](const AppDisplayed& e) { return joined(e.instance, e.package); },
        [](const AccountListUpdated& e) { return joined(e.instance, e.emailId, e.action); }};
    return std::visit(values, event);
}

// "event NAME VALUES", without the blank where an event has no values.
void sayEvent(const bridge::Event& event) {
    const std::string values = valuesOf(event);
    say("event " + std::string(bridge::nameOf(event)) + (values.empty() ? "" : " " + values));
}

bridge::Event nextOf(bridge::EventQueue& queue) {
    std::optional<bridge::Event> event = queue.pop(kLimit);
    if (!event) throw std::runtime_error("no event came");
    return *std::move(event);
}

// The streams begin before "listening" is printed.
class Host {
 public:
    void play(const std::string& step) {
        const Words words = split(step, '\t');
        try {
            steps.at(words[0])(words);
        } catch (const bridge::KeyError& error) {
            say(std::string("key error ") + error.what());
        } catch (const bridge::Error& error) {
            say(errorLine(error));
        }
    }

 private:
    static void preflight(const Words& words) {
        const auto problems = bridge::preflight(clientOf(words[1]));
        for (const bridge::Problem& one : problems) say("problem " + one.what);
        if (problems.empty()) say("fine");
    }

    static void init(const Words& words) {
        const auto problems = bridge::preflight(clientOf(words[1]));
        if (!problems.empty()) return say("preflight " + std::to_string(problems.size()));
        sayStatus(bridge::init(clientOf(words[1])), "started");
    }

    static void get(const Words& words) {
        const std::string type = typeOf(words, 2);
        const std::string value = accessTo(type).get(words[1]);
        say(type + " " + value);
    }

    static void getTyped(const Words& /*words*/) {
        namespace keys = bridge::keys;
        const bool enabled = bridge::conf::get(keys::enable_adb_access);
        const std::int32_t dpi = bridge::conf::get(keys::instance("Nougat64").dpi);
        say(std::string("typed ") + shown(enabled) + " " + std::to_string(dpi));
    }

    static void instances(const Words& /*words*/) {
        for (const bridge::Instance& one : bridge::instanceList().value()) {
            say("instance " + one.instance + " " + one.displayName + " " + one.imageName + " " +
                std::to_string(one.ram) + " " + std::to_string(one.cpu));
        }
    }

    static void apps(const Words& words) {
        for (const bridge::App& one : bridge::appList(words[1]).value()) {
            say("app " + one.package + " " + one.appLabel + " " + std::to_string(one.versionCode));
        }
    }

    void listen(const Words& /*words*/) {
        constexpr std::size_t kFew = 2;
        queue = std::make_unique<bridge::EventQueue>();
        few = std::make_unique<bridge::EventQueue>(kFew);
        say(bridge::listen({}, kLimit).ok ? "listening" : "listen error");
    }

    void events(const Words& words) {
        for (int i = std::atoi(words[1].c_str()); i > 0; --i) sayEvent(nextOf(*queue));
    }

    void overflow(const Words& /*words*/) {
        for (int i = 0; i < 5; ++i) nextOf(*queue);
        try {
            while (true) sayEvent(nextOf(*few));
        } catch (const bridge::EventOverflow&) {
            say("overflow");
        }
    }

    using Step = std::function<void(const Words& words)>;
    const std::map<std::string, Step> steps = {
        {"preflight", preflight},
        {"init", init},
        {"get", get},
        {"set", [](auto& w) { sayStatus(accessTo(typeOf(w, 3)).set(w[1], w[2]), "set"); }},
        {"gettyped", getTyped},
        {"addinstance",
         [](auto& w) {
             bridge::conf::addInstance(w[1]);
             say("added");
         }},
        {"commit", [](auto&) { sayStatus(bridge::conf::commit(), "committed"); }},
        {"committofile", [](auto& w) { sayStatus(bridge::conf::commitToFile(w[1]), "committed"); }},
        {"instances", instances},
        {"apps", apps},
        {"listen", [this](auto& w) { listen(w); }},
        {"launch", [](auto& w) { sayOutcome(bridge::work::launchApp(w[1], w[2]), w); }},
        {"installapk", [](auto& w) { sayOutcome(bridge::work::installApk(w[1], w[2]), w); }},
        {"uninstall", [](auto& w) { sayOutcome(bridge::work::uninstallApp(w[1], w[2]), w); }},
        {"installimage", [](auto& w) { sayOutcome(bridge::work::installImage(w[1]), w); }},
        {"create",
         [](auto& w) {
             sayOutcome(bridge::work::createFreshInstance({w[1], "2", "2048", "aga", "dx", "s21"}),
                        w);
         }},
        {"events", [this](auto& w) { events(w); }},
        {"overflow", [this](auto& w) { overflow(w); }},
        {"fini", [](auto&) {
             bridge::finish();
             say("ended");
         }}};

    std::unique_ptr<bridge::EventQueue> queue;
    std::unique_ptr<bridge::EventQueue> few;
};

}  // namespace

int main(int argc, char** argv) {
    const Words arguments = utf8Arguments(argc, argv);
    ::_setmode(::_fileno(stdout), _O_BINARY);  // lines end without "\r"
    std::setvbuf(stdout, nullptr, _IONBF, 0);
    RegistrySandbox registry;
    if (!arguments[1].empty()) registry.set("UserDefinedDir", arguments[1]);
    registry.set("InstallDir", arguments[2]);
    const char* const version = std::getenv("QX_SCENARIO_VERSION");
    registry.set("Version", version == nullptr ? BRIDGE_VERSION_TEXT : version);
    Host host;
    for (std::size_t i = 3; i < arguments.size(); ++i) host.play(arguments[i]);
    say("finished");
    return 0;
}
