// Plays scenarios.txt in every language that runs on Windows here.
#include <algorithm>
#include <cctype>
#include <chrono>
#include <cstddef>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "BindingHosts.h"
#include "PlainHost.h"
#include "support/ProductVersion.h"

namespace {

struct Scenario {
    std::string name;
    Lines languages;  // empty: all
    Lines given;
    Lines conf;
    Lines steps;
    Lines says;
};

// A language's host: its command line up to the data folder, and its client id.
struct Language {
    std::string name;
    std::string program;
    std::vector<std::string> arguments;
    std::string client;
};

std::vector<Language> languages() {
    const std::string library = builtProgram("QX-Bridge.dll");
    return {
        {"cpp", builtProgram("scenario_cpp.exe"), {}, "Uninstaller"},
        {"csharp",
         environment("QX_DOTNET"),
         {environment("QX_DOTNET_SCENARIO"), library},
         "Uninstaller"},
        {"node", environment("QX_NODE"), {environment("QX_NODE_SCENARIO"), library}, "Launcher"}};
}

// The text before the first separator, and the text after it.
std::pair<std::string, std::string> cut(const std::string& line, std::string_view separator = " ") {
    const std::size_t at = line.find(separator);
    if (at == std::string::npos) return {line, ""};
    return {line.substr(0, at), line.substr(at + separator.size())};
}

void addLine(Scenario& scenario, const std::string& line) {
    const std::map<std::string, Lines Scenario::*> kinds = {{"language", &Scenario::languages},
                                                            {"given", &Scenario::given},
                                                            {"conf", &Scenario::conf},
                                                            {"do", &Scenario::steps},
                                                            {"says", &Scenario::says}};
    constexpr std::string_view kArrow = " -> ";
    const auto [kind, rest] = cut(line);
    const auto [text, outcome] = cut(rest, kArrow);
    (scenario.*kinds.at(kind)).push_back(text);
    if (text.size() < rest.size()) scenario.says.push_back(outcome);
}

std::vector<Scenario> scenarios() {
    std::ifstream file(environment("QX_SCENARIOS"));
    std::vector<Scenario> all;
    for (std::string line; std::getline(file, line);) {
        if (line.empty() || line[0] == '#') continue;
        if (const auto [kind, name] = cut(line); kind == "scenario") {
            all.push_back({name, {}, {}, {}, {}, {}});
        } else {
            addLine(all.at(all.size() - 1), line);
        }
    }
    return all;
}

using Play = std::tuple<Language, Scenario>;

// The parameter in the message of a failure.
void PrintTo(const Language& language, std::ostream* out) { *out << language.name; }
void PrintTo(const Scenario& scenario, std::ostream* out) { *out << scenario.name; }

// Each scenario, in each of its languages.
std::vector<Play> plays() {
    std::vector<Play> all;
    for (const Language& language : languages()) {
        for (const Scenario& scenario : scenarios()) {
            const Lines& only = scenario.languages;
            if (only.empty() || std::find(only.begin(), only.end(), language.name) != only.end()) {
                all.emplace_back(language, scenario);
            }
        }
    }
    return all;
}

std::string nameOf(const ::testing::TestParamInfo<Play>& play) {
    std::string name = std::get<0>(play.param).name + "_" + std::get<1>(play.param).name;
    for (char& c : name) c = std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
    return name;
}

void replaceAll(std::string& text, std::string_view from, std::string_view to) {
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at)) {
        text.replace(at, from.size(), to);
        at += to.size();
    }
}

class ScenariosTest : public PlainHostTest, public ::testing::WithParamInterface<Play> {
 protected:
    ScenariosTest() {
        for (const std::string& line : scenario.conf) conf += line + "\n";
        for (const std::string& what : scenario.given) prepare(what);
        if (hasConf) writeConf(mark + conf);
        data.write("standin.script", script);
    }

    // Sets the state that a line "given" names.
    void prepare(const std::string& what) {
        using Given = std::function<void(const std::string& rest)>;
        const std::map<std::string, Given> all = {
            {"no registry value", [this](const auto&) { dataFolder.clear(); }},
            {"no data folder", [this](const auto&) { dataFolder = data / "missing"; }},
            {"no Logs", [this](const auto&) { removeFile(data / "Logs"); }},
            {"a folder in place of the log",
             [this](const auto&) { data.makeFolder("Logs\\Player.log"); }},
            {"no configuration file", [this](const auto&) { hasConf = false; }},
            {"a byte order mark", [this](const auto&) { mark = "\xEF\xBB\xBF"; }},
            {"programs", [this](const auto&) { installFolder = standinProgram(""); }},
            {"another host listens", [this](const auto&) { givenAnotherHostListens(); }},
            {"version", [this](const auto& text) { productVersion = text; }},
            {"script", [this](const auto& line) { script += line + "\n"; }},
            {"event", [this](const auto& words) { events += "event " + words + "\n"; }},
            {"later", [this](const auto& line) { later += line + "\n"; }},
            {"apps", [this](const auto& text) { givenApps(text); }}};
        const auto whole = all.find(what);
        if (whole != all.end()) return whole->second("");
        const auto [kind, rest] = cut(what);
        all.at(kind)(rest);
    }

    void givenApps(const std::string& text) {
        const auto [instance, json] = cut(text);
        data.makeFolder("Engine\\" + instance + "\\AppCache");
        data.write("Engine\\" + instance + "\\AppCache\\AppCache.json", json);
    }

    void givenAnotherHostListens() {
        writeConf(conf);
        other = std::make_unique<ChildProcess>(
            builtProgram("scenario_cpp.exe"),
            std::vector<std::string>{data.path(), installFolder, "init\t" + language.client,
                                     "listen", "events\t1"},
            options("standin.script"));
        EXPECT_EQ(other->readLine(), "started");
        EXPECT_EQ(other->readLine(), "listening");
    }

    std::string filled(std::string text) const {
        replaceAll(text, "{client}", language.client);
        replaceAll(text, "{data}", data.path());
        replaceAll(text, "{version}", kProductVersion);
        replaceAll(text, "{line feed}", "\n");
        return text;
    }

    ChildOptions options(const std::string& scriptFile) const {
        ChildOptions result;
        result.environment = {{"QX_STANDIN_CLIENTS", language.client},
                              {"QX_STANDIN_OUTPUT", data / "standin.txt"},
                              {"QX_STANDIN_SCRIPT", data / scriptFile},
                              {"QX_STANDIN_SECONDS", "1"},
                              {"QX_SCENARIO_VERSION", productVersion}};
        result.limit = std::chrono::seconds(120);
        return result;
    }

    ChildProcess startHost() const {
        std::vector<std::string> arguments = language.arguments;
        arguments.push_back(dataFolder);
        arguments.push_back(installFolder);
        for (const std::string& step : scenario.steps) arguments.push_back(filled(step));
        return {language.program, arguments, options("standin.script")};
    }

    // The lines until the host listens. Then changes the file and sends the events.
    Lines linesUntilItListens(ChildProcess& host) {
        Lines lines;
        while (lines.size() < scenario.says.size() &&
               (lines.empty() || lines.back() != "listening")) {
            lines.push_back(host.readLine());
        }
        if (!later.empty()) writeConf(conf + later);
        data.write("events.script", events);
        sender = std::make_unique<ChildProcess>(
            standinProgram("QX-Player.exe"),
            std::vector<std::string>{"--instance", "Scenario" + language.client},
            options("events.script"));
        return lines;
    }

    Lines played() {
        ChildProcess host = startHost();
        Lines lines;
        if (!events.empty()) lines = linesUntilItListens(host);
        const ChildResult result = host.finish();
        EXPECT_EQ(result.status, 0u) << result.err;
        EXPECT_EQ(result.err, "");
        const Lines rest = linesOf(result.out);
        lines.insert(lines.end(), rest.begin(), rest.end());
        return lines;
    }

    Lines expected() const {
        Lines lines;
        for (const std::string& line : scenario.says) lines.push_back(filled(line));
        lines.push_back("finished");
        return lines;
    }

    const Language language = std::get<0>(GetParam());
    const Scenario scenario = std::get<1>(GetParam());

 private:
    std::string dataFolder = data.path();
    std::string installFolder = "C:\\None\\";
    std::string productVersion = kProductVersion;
    std::string conf;
    std::string mark;
    std::string script;
    std::string events;
    std::string later;  // lines that the file gets when the host listens
    bool hasConf = true;
    std::unique_ptr<ChildProcess> other;
    std::unique_ptr<ChildProcess> sender;
};

}  // namespace

TEST_P(ScenariosTest, Plays) { EXPECT_EQ(played(), expected()); }

INSTANTIATE_TEST_SUITE_P(Every, ScenariosTest, ::testing::ValuesIn(plays()), nameOf);

TEST(ScenarioListTest, HasScenariosForEveryLanguage) {
    const std::vector<Play> all = plays();
    EXPECT_GE(scenarios().size(), 25u);
    for (const Language& language : languages()) {
        const auto isOf = [&language](const Play& play) {
            return std::get<0>(play).name == language.name;
        };
        EXPECT_GE(std::count_if(all.begin(), all.end(), isOf), 25) << language.name;
    }
}

TEST(ScenarioListTest, EveryStepSaysSomethingOrNothingOnPurpose) {
    for (const Scenario& scenario : scenarios()) {
        EXPECT_FALSE(scenario.steps.empty()) << scenario.name;
        EXPECT_FALSE(scenario.says.empty()) << scenario.name;
    }
}
