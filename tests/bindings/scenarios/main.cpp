// Plays the steps of a scenario over the C++ interface: scenario_cpp DATA-FOLDER INSTALL-FOLDER
// STEP... A step is a word and its arguments, joined by tabs; scenarios.txt has the words. Prints a
// line for each outcome, and "finished" at the end.
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

#include "CommandLineUtf8.h"
#include "support/RegistrySandbox.h"

namespace {

using Words = std::vector<std::string>;

constexpr auto kLimit = std::chrono::seconds(30);
constexpr auto kShortLimit = std::chrono::seconds(1);

// What the steps of a scenario share. The queues begin before "listening" is said.
struct Host {
    std::unique_ptr<bridge::EventQueue> events;
    std::unique_ptr<bridge::EventQueue> few;
};

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

std::string withCommas(std::string text) {
    for (char& c : text) c = c == '|' ? ',' : c;
    return text;
}

std::string withBars(std::string text) {
    for (char& c : text) c = c == ',' ? '|' : c;
    return text;
}

const char* shown(bool value) { return value ? "true" : "false"; }

std::string errorLine(const bridge::Status& status) {
    const bridge::Error error = status.error();
    return "error " + std::to_string(error.code()) + " " + std::string(error.name());
}

void sayStatus(const bridge::Status& status, const char* done) {
    say(status.ok() ? done : errorLine(status));
}

bridge::Client clientOf(const std::string& id) {
    for (const auto client :
         {bridge::Client::Launcher, bridge::Client::Installer, bridge::Client::LogCollector,
          bridge::Client::Helper, bridge::Client::Uninstaller}) {
        if (id == bridge::clientId(client)) return client;
    }
    throw std::runtime_error("no client " + id);
}

void preflight(Host& /*host*/, const Words& words) {
    const auto problems = bridge::preflight(clientOf(words[1]));
    for (const bridge::Problem& one : problems) say("problem " + one.what);
    if (problems.empty()) say("fine");
}

void init(Host& /*host*/, const Words& words) {
    const auto problems = bridge::preflight(clientOf(words[1]));
    if (!problems.empty()) return say("preflight " + std::to_string(problems.size()));
    sayStatus(bridge::init(clientOf(words[1])), "started");
}

// The type that a step names, or that the catalogue has. A key that it lacks is the function's to
// refuse.
bridge::KeyType typeOf(const Words& words, std::size_t index) {
    if (words.size() > index) {
        for (const auto type : {bridge::KeyType::Bool, bridge::KeyType::I32, bridge::KeyType::I64,
                                bridge::KeyType::String, bridge::KeyType::MultiString}) {
            if (words[index] == bridge::nameOf(type)) return type;
        }
    }
    const auto parts = bridge::detail::partsOf(words[1]);
    const auto* const property = parts ? bridge::detail::findProperty(*parts) : nullptr;
    return property == nullptr ? bridge::KeyType::String : property->type;
}

std::string valueOf(const std::string& key, bridge::KeyType type) {
    using namespace bridge;
    switch (type) {
        case KeyType::Bool:
            return shown(conf::getBool(key));
        case KeyType::I32:
            return std::to_string(conf::getI32(key));
        case KeyType::I64:
            return std::to_string(conf::getI64(key));
        case KeyType::String:
            return conf::getString(key).value();
        case KeyType::MultiString:
            return withBars(conf::getMultiString(key).value());
    }
    return {};
}

void get(Host& /*host*/, const Words& words) {
    const bridge::KeyType type = typeOf(words, 2);
    const std::string value = valueOf(words[1], type);
    say(std::string(bridge::nameOf(type)) + " " + value);
}

bridge::Status setTo(const std::string& key, bridge::KeyType type, const std::string& value) {
    using namespace bridge;
    switch (type) {
        case KeyType::Bool:
            return conf::setBool(key, value == "true");
        case KeyType::I32:
            return conf::setI32(key, std::atoi(value.c_str()));
        case KeyType::I64:
            return conf::setI64(key, std::atoll(value.c_str()));
        case KeyType::String:
            return conf::setString(key, value);
        case KeyType::MultiString:
            return conf::setMultiString(key, withCommas(value));
    }
    return Status(BRIDGE_FAILURE);
}

void set(Host& /*host*/, const Words& words) {
    sayStatus(setTo(words[1], typeOf(words, 3), words[2]), "set");
}

void getTyped(Host& /*host*/, const Words& /*words*/) {
    namespace keys = bridge::keys;
    const bool enabled = bridge::conf::get(keys::enable_adb_access);
    const std::int32_t dpi = bridge::conf::get(keys::instance("Nougat64").dpi);
    say(std::string("typed ") + shown(enabled) + " " + std::to_string(dpi));
}

void addInstance(Host& /*host*/, const Words& words) {
    bridge::conf::addInstance(words[1]);
    say("added");
}

void commit(Host& /*host*/, const Words& /*words*/) {
    sayStatus(bridge::conf::commit(), "committed");
}

void commitToFile(Host& /*host*/, const Words& words) {
    sayStatus(bridge::conf::commitToFile(words[1]), "committed");
}

void instances(Host& /*host*/, const Words& /*words*/) {
    for (const bridge::Instance& one : bridge::instanceList().value()) {
        say("instance " + one.instance + " " + one.displayName + " " + one.imageName + " " +
            std::to_string(one.ram) + " " + std::to_string(one.cpu));
    }
}

void apps(Host& /*host*/, const Words& words) {
    for (const bridge::App& one : bridge::appList(words[1]).value()) {
        say("app " + one.package + " " + one.appLabel + " " + std::to_string(one.versionCode));
    }
}

void listen(Host& host, const Words& /*words*/) {
    constexpr std::size_t kFew = 2;
    host.events = std::make_unique<bridge::EventQueue>();
    host.few = std::make_unique<bridge::EventQueue>(kFew);
    say(bridge::listen({}, kLimit).ok ? "listening" : "listen error");
}

// Waits for a work, and says its outcome.
template <typename Outcome, typename Show>
void sayOutcome(const bridge::Work<Outcome>& work, const Words& words, Show show) {
    const bool isShort = words.back() == "short";
    const auto outcome = work.wait(isShort ? kShortLimit : kLimit);
    say(outcome ? show(*outcome) : "time-out");
}

void launch(Host& /*host*/, const Words& words) {
    sayOutcome(bridge::work::launchApp(words[1], words[2]), words, [](const auto& event) {
        return "displayed " + event.instance + " " + event.package;
    });
}

void installApk(Host& /*host*/, const Words& words) {
    sayOutcome(bridge::work::installApk(words[1], words[2]), words,
               [](const auto& event) { return "installed " + std::to_string(event.status); });
}

void uninstall(Host& /*host*/, const Words& words) {
    sayOutcome(bridge::work::uninstallApp(words[1], words[2]), words,
               [](const auto&) { return std::string("uninstalled"); });
}

void installImage(Host& /*host*/, const Words& words) {
    sayOutcome(bridge::work::installImage(words[1]), words,
               [](const auto& event) { return "image " + std::to_string(event.status); });
}

void create(Host& /*host*/, const Words& words) {
    sayOutcome(bridge::work::createFreshInstance({words[1], "2", "2048", "aga", "dx", "s21"}),
               words, [](const auto& event) {
                   return "created " + std::to_string(event.status) + " " + event.instance;
               });
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

struct ValuesOf {
    std::string operator()(const bridge::events::AppInstalled& e) const {
        return joined(e.instance, e.package, e.activity, e.appLabel, e.versionCode, e.versionName,
                      e.iconFilePath, e.isUpdate);
    }
    std::string operator()(const bridge::events::AppUninstalled& e) const {
        return joined(e.instance, e.package);
    }
    std::string operator()(const bridge::events::ApkInstallCompleted& e) const {
        return joined(e.instance, e.status, e.apkFilePath);
    }
    std::string operator()(const bridge::events::InstanceListUpdated& /*e*/) const { return {}; }
    std::string operator()(const bridge::events::InstallImageProgress& e) const {
        return joined(e.imageName, e.status, e.progress);
    }
    std::string operator()(const bridge::events::CreateInstanceCompleted& e) const {
        return joined(e.status, e.instance);
    }
    std::string operator()(const bridge::events::InstanceConfigurationChanged& e) const {
        return joined(e.instance);
    }
    std::string operator()(const bridge::events::AppDisplayed& e) const {
        return joined(e.instance, e.package);
    }
    std::string operator()(const bridge::events::AccountListUpdated& e) const {
        return joined(e.instance, e.emailId, e.action);
    }
};

// "event NAME VALUES", without the blank where an event has no values.
void sayEvent(const bridge::Event& event) {
    const std::string values = std::visit(ValuesOf(), event);
    say("event " + std::string(bridge::nameOf(event)) + (values.empty() ? "" : " " + values));
}

bridge::Event nextOf(bridge::EventQueue& queue) {
    std::optional<bridge::Event> event = queue.pop(kLimit);
    if (!event) throw std::runtime_error("no event came");
    return *std::move(event);
}

void events(Host& host, const Words& words) {
    for (int i = std::atoi(words[1].c_str()); i > 0; --i) sayEvent(nextOf(*host.events));
}

void overflow(Host& host, const Words& /*words*/) {
    for (int i = 0; i < 5; ++i) nextOf(*host.events);
    try {
        while (true) sayEvent(nextOf(*host.few));
    } catch (const bridge::EventOverflow&) {
        say("overflow");
    }
}

void fini(Host& /*host*/, const Words& /*words*/) {
    bridge::finish();
    say("ended");
}

using Step = void (*)(Host& host, const Words& words);

const std::map<std::string, Step>& steps() {
    static const std::map<std::string, Step> all = {{"preflight", preflight},
                                                    {"init", init},
                                                    {"get", get},
                                                    {"set", set},
                                                    {"gettyped", getTyped},
                                                    {"addinstance", addInstance},
                                                    {"commit", commit},
                                                    {"committofile", commitToFile},
                                                    {"instances", instances},
                                                    {"apps", apps},
                                                    {"listen", listen},
                                                    {"launch", launch},
                                                    {"installapk", installApk},
                                                    {"uninstall", uninstall},
                                                    {"installimage", installImage},
                                                    {"create", create},
                                                    {"events", events},
                                                    {"overflow", overflow},
                                                    {"fini", fini}};
    return all;
}

void play(Host& host, const std::string& step) {
    const Words words = split(step, '\t');
    try {
        steps().at(words[0])(host, words);
    } catch (const bridge::KeyError& error) {
        say(std::string("key error ") + error.what());
    } catch (const bridge::Error& error) {
        say("error " + std::to_string(error.code()) + " " + std::string(error.name()));
    }
}

}  // namespace

int main() {
    const Words arguments = commandLineUtf8();
    printBytes();
    RegistrySandbox registry;
    if (!arguments[1].empty()) registry.set("UserDefinedDir", arguments[1]);
    registry.set("InstallDir", arguments[2]);
    const char* const version = std::getenv("QX_SCENARIO_VERSION");
    registry.set("Version", version == nullptr ? BRIDGE_VERSION_TEXT : version);
    Host host;
    for (std::size_t i = 3; i < arguments.size(); ++i) play(host, arguments[i]);
    say("finished");
    return 0;
}
