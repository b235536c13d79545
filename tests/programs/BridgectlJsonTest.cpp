// --json of every command, and the options that every command has.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>

#include "ConfExpectation.h"
#include "ProgramFixture.h"

namespace {

using Json = nlohmann::ordered_json;

class BridgectlJsonTest : public BridgectlFixture {
 protected:
    BridgectlJsonTest() {
        useStandins("LogCollector", "1");
        data.write("vantrel.conf",
                   "vtr.locale=\"fr-FR\"\nvtr.feature.rooting=\"maybe\"\n"
                   "vtr.instance.Nougat64.display_name=\"Jeux 日本\"\n"
                   "vtr.instance.Nougat64.ram=\"4096\"\n");
    }

    Json json(const Arguments& arguments) const {
        return Json::parse(output(arguments), nullptr, /*allow_exceptions=*/false);
    }
};

// The words of the first example, up to shell syntax.
Arguments exampleIn(const std::string& details) {
    const std::string start = "Example: bridgectl ";
    const std::size_t example = details.find(start);
    if (example == std::string::npos) return {};
    std::istringstream line(details.substr(example + start.size()));
    std::string text;
    std::getline(line, text);
    std::istringstream words(text);
    Arguments arguments;
    for (std::string word; words >> word && word != ">>";) arguments.push_back(word);
    return arguments;
}

std::string inOneLine(const Arguments& words) {
    std::string text;
    for (const std::string& word : words) text += (text.empty() ? "" : " ") + word;
    return text;
}

// The examples in `help --json` by command ("conf get").
std::map<std::string, Arguments> examplesOf(const Json& command, const std::string& prefix = {}) {
    std::map<std::string, Arguments> examples;
    for (const Json& inner : command["commands"]) {
        const std::string name = prefix + inner["name"].get<std::string>();
        std::map<std::string, Arguments> deeper = examplesOf(inner, name + " ");
        if (deeper.empty()) deeper[name] = exampleIn(inner["details"]);
        examples.merge(deeper);
    }
    return examples;
}

}  // namespace

TEST_F(BridgectlJsonTest, EveryCommandPrintsJson) {
    useStandins("Helper", "1");  // some examples wait for an event
    const auto examples = examplesOf(json({"help", "--json"}));
    EXPECT_EQ(examples.count("conf get"), 1u);
    for (const auto& [name, example] : examples) {
        if (name == "events" || name == "wait-for" || name == "watch") continue;  // these never end
        if (name == "doctor") continue;  // has its own tests
        ASSERT_EQ((inOneLine(example) + " ").rfind(name + " ", 0), 0u)
            << "is not an example of " << name;
        Arguments line = example;
        if (std::find(line.begin(), line.end(), "--json") == line.end()) line.push_back("--json");
        const Json value = json(line);
        EXPECT_TRUE(value.is_object() || value.is_array()) << name;
        EXPECT_FALSE(value.is_object() && value.empty()) << name;
    }
}

TEST_F(BridgectlJsonTest, EventsAndWaitForPrintAnObjectPerLine) {
    for (const Arguments& command :
         {Arguments{"events", "--count", "1"}, Arguments{"wait-for", "app-displayed"}}) {
        ChildProcess listener = listen(joined({"--json"}, command));
        send({"app-displayed", "N", "p"});
        const ChildResult result = listener.finish();
        EXPECT_EQ(result.status, 0u);
        const Json event = Json::parse(result.out, nullptr, false);
        ASSERT_TRUE(event.is_object()) << result.out;
        EXPECT_EQ(event["event"], "app-displayed");
        EXPECT_EQ(event["package"], "p");
    }
}

TEST_F(BridgectlJsonTest, TheOptionComesBeforeOrAfterTheCommand) {
    const std::string text = output({"conf", "get", "vtr.locale", "--json"});
    EXPECT_EQ(text,
              "{\n    \"key\": \"vtr.locale\",\n    \"type\": \"string\",\n"
              "    \"value\": \"fr-FR\"\n}\n");
    EXPECT_EQ(output({"--json", "conf", "get", "vtr.locale"}), text);
}

TEST_F(BridgectlJsonTest, AnUnsetKeyIsNullWithItsExitCode) {
    const ChildResult result = run({"conf", "get", "vtr.prefer_dedicated_gpu", "--json"});
    EXPECT_EQ(result.status, 7u);
    EXPECT_TRUE(Json::parse(result.out)["value"].is_null());
}

TEST_F(BridgectlJsonTest, AnErrorIsAnObjectAndALine) {
    const ChildResult result = run({"conf", "get", "vtr.nothing", "--json"});
    EXPECT_EQ(result.status, 3u);
    EXPECT_EQ(result.out,
              R"({"code":3,"name":"UnknownName","text":"no such key: vtr.nothing","hint":null})"
              "\n");
    EXPECT_EQ(result.err, "bridgectl: no such key: vtr.nothing\n");
    EXPECT_EQ(run({"--json", "apps", "Nuogat64"}).out,
              R"({"code":3,"name":"UnknownName","text":"no such instance: Nuogat64",)"
              R"("hint":"did you mean Nougat64?"})"
              "\n");
}

TEST_F(BridgectlJsonTest, MisuseIsAnObjectToo) {
    for (const Arguments& arguments :
         {Arguments{"--json", "instnaces"}, Arguments{"instnaces", "--json"}}) {
        const ChildResult result = run(arguments);
        EXPECT_EQ(result.status, 2u);
        EXPECT_EQ(result.out, R"({"code":2,"name":"Usage","text":"no such command: instnaces",)"
                              R"("hint":"did you mean instances?"})"
                              "\n");
    }
    EXPECT_EQ(run({"conf", "set", "vtr.locale", "--", "--json", "x"}).out, "")
        << "after \"--\" it is an argument";
}

TEST_F(BridgectlJsonTest, StandardOutputHasOnlyJson) {
    // The library prints log lines until its log is open.
    const ChildResult result = run({"--client", "Other", "instances", "--json"});
    EXPECT_EQ(result.status, 5u);
    const Json error = Json::parse(result.out, nullptr, false);
    EXPECT_EQ(error["text"], "the library did not start: 22 XERR_INVAL") << result.out;
    EXPECT_EQ(error["hint"],
              "--client must be one of Launcher, Installer, LogCollector, Helper, Uninstaller");
    EXPECT_NE(result.err.find("bridgeApiInitEx: Invalid clientId : Other"), std::string::npos)
        << result.err;
    for (const Arguments& arguments :
         {Arguments{"--help", "--json"}, Arguments{"conf", "get", "--help", "--json"},
          Arguments{"--version", "--json"}, Arguments{"catalogue", "--markdown", "--json"},
          Arguments{"explain", "--markdown", "--json"}, Arguments{"--json"}}) {
        const std::string out = run(arguments).out;
        EXPECT_FALSE(Json::parse(out, nullptr, false).is_discarded()) << arguments[0] << out;
    }
}

TEST_F(BridgectlJsonTest, OutputOfTheLibraryIsNotOnStandardOutput) {
    const ChildResult result = run({"--client", "Other", "conf", "get", "vtr.locale"});
    EXPECT_EQ(result.out, "");
    EXPECT_NE(result.err.find("bridgeApiInitEx: Invalid clientId : Other"), std::string::npos);
}

TEST_F(BridgectlJsonTest, ChangesHaveTheValueBefore) {
    const Json change = json({"conf", "set", "vtr.next_vm_id", "5", "--json"});
    EXPECT_EQ(change.dump(), R"({"key":"vtr.next_vm_id","type":"i32","value":5,"before":1})");
}

TEST_F(BridgectlJsonTest, ConfirmationsAreObjects) {
    EXPECT_EQ(json({"shutdown", "Nougat64", "--json"}).dump(), R"({"instance":"Nougat64"})");
    EXPECT_EQ(json({"shutdown", "--json"}).dump(), R"({"instance":null})");
    EXPECT_EQ(json({"launch", "Nougat64", "com.a", "--json"}).dump(), R"({"started":true})");
}

TEST_F(BridgectlJsonTest, QuietPrintsResultsAndErrorsOnly) {
    EXPECT_EQ(output({"conf", "set", "vtr.locale", "de", "--quiet"}), "");
    EXPECT_EQ(output({"conf", "set", "vtr.locale", "nl", "--quiet", "--json"}), "");
    EXPECT_EQ(output({"--quiet", "conf", "get", "vtr.locale"}), "nl\n");
    EXPECT_EQ(output({"shutdown", "Nougat64", "--quiet"}), "");
    const ChildResult listener =
        run({"--client", "LogCollector", "--quiet", "events", "--timeout", "1"});
    EXPECT_EQ(listener.status, 0u);
    EXPECT_EQ(listener.out + listener.err, "");
    EXPECT_EQ(run({"--quiet", "conf", "get", "vtr.nothing"}).err,
              "bridgectl: no such key: vtr.nothing\n");
}

TEST_F(BridgectlJsonTest, TimingNamesEachFunctionOfTheLibrary) {
    const auto keys = static_cast<int>(instanceCount());
    const ChildResult result = run({"conf", "list", "--instance", "Nougat64", "--timing"});
    EXPECT_EQ(result.status, 0u);
    EXPECT_EQ(std::count(result.out.begin(), result.out.end(), '\n') - 1, keys);
    Arguments functions;
    int reads = 0;
    std::istringstream lines(result.err);
    for (std::string line; std::getline(lines, line);) {
        EXPECT_EQ(line.rfind("bridgectl: bridge", 0), 0u) << line;
        EXPECT_EQ(line.substr(line.size() - 3), " ms") << line;
        const std::size_t colon = line.find(": ", 11);
        functions.push_back(line.substr(11, colon - 11));
        if (functions.back().rfind("bridgeConfGet", 0) == 0) {
            reads += std::stoi(line.substr(colon + 2));
        }
    }
    EXPECT_EQ(functions.front(), "bridgeApiInit");
    EXPECT_EQ(functions.back(), "bridgeApiFini");
    EXPECT_EQ(reads, keys) << "one for each key";
}

TEST_F(BridgectlJsonTest, ATimeoutEndsWaitFor) {
    const ChildResult result =
        run({"--client", "LogCollector", "wait-for", "app-installed", "--timeout", "1"});
    EXPECT_EQ(result.status, 9u);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err,
              "bridgectl: listening on vtr_LogCollector_bridge_nvo\n"
              "bridgectl: 0 of 1 events\n");
    EXPECT_EQ(
        run({"--client", "LogCollector", "wait-for", "app-installed", "--timeout", "1", "--json"})
            .out,
        R"({"code":9,"name":"Timeout","text":"0 of 1 events","hint":null})"
        "\n");
    EXPECT_EQ(run({"wait-for", "nonsense"}).status, 2u);
}

TEST_F(BridgectlJsonTest, WaitForIgnoresOtherEvents) {
    ChildProcess listener = listen({"wait-for", "app-uninstalled", "--json"});
    for (const char* event : {"app-displayed", "app-uninstalled"}) send({event, "N", "p"});
    const ChildResult result = listener.finish();
    EXPECT_EQ(result.status, 0u);
    EXPECT_EQ(Json::parse(result.out)["event"], "app-uninstalled");
}

TEST_F(BridgectlJsonTest, EveryCommandReportsABrokenOutput) {
    // A pipe whose reader has closed it before the program starts.
    options.outputIsBroken = true;
    for (const Arguments& arguments :
         {Arguments{"--help"}, Arguments{"--version"}, Arguments{"instances"},
          Arguments{"conf", "get", "vtr.locale"}, Arguments{"conf", "list", "--json"},
          Arguments{"conf", "set", "vtr.locale", "de"}, Arguments{"help"}, Arguments{"catalogue"},
          Arguments{"explain", "2"}, Arguments{"completion", "bash"},
          Arguments{"shutdown", "Nougat64"}, Arguments{"apps", "Nougat64"}}) {
        const ChildResult result = run(arguments);
        EXPECT_EQ(result.status, 11u) << arguments[0];
        EXPECT_EQ(result.err, "bridgectl: standard output cannot be written\n") << arguments[0];
    }
}

TEST_F(BridgectlJsonTest, PipesGetNoColours) {
    for (const Arguments& arguments :
         {Arguments{"--help"}, Arguments{"instances"}, Arguments{"conf", "get", "vtr.nothing"}}) {
        const ChildResult result = run(arguments);
        EXPECT_EQ((result.out + result.err).find('\x1b'), std::string::npos) << arguments[0];
    }
}

TEST_F(BridgectlJsonTest, TheCatalogueHasEveryKeyWithoutTheLibrary) {
    const Json keys = json({"--log-file", "\\nowhere\\x:y", "catalogue", "--json"});
    ASSERT_EQ(keys.size(), globalCount() + instanceCount());
    EXPECT_EQ(keys[0].dump(),
              R"({"key":"vtr.campaign_hash","scope":"global","type":"string","default":""})");
    EXPECT_EQ(keys[globalCount()].dump(),
              R"({"key":"vtr.instance.<instance>.abi_list",)"
              R"("scope":"instance","type":"multi-string","default":""})");
}

TEST_F(BridgectlJsonTest, CodesAreExplainedByNumberAndByName) {
    EXPECT_EQ(output({"explain", "2"}), "2 XERR_NOENT: no such file or folder\n");
    EXPECT_EQ(output({"explain", "NOENT"}), output({"explain", "XERR_NOENT"}));
    EXPECT_EQ(output({"explain", "--", "-1"}),
              "-1 XERR_FAILURE: it failed; the log has the cause\n");
    EXPECT_EQ(json({"explain", "98", "--json"}).dump(),
              R"({"code":98,"name":"XERR_ADDRINUSE","meaning":"the name or address is in use",)"
              R"("windowsErrors":[183]})");
    EXPECT_EQ(output({"explain", "101314"}).rfind("101314: Windows error 1314", 0), 0u);
    for (const char* code : {"134", "41", "99999", "2x", "", "XERR_", "UNKNOWN_CODE"}) {
        const ChildResult result = run({"explain", code});
        EXPECT_EQ(result.status, 3u) << code;
        EXPECT_EQ(result.err, std::string("bridgectl: no such result code: ") + code + "\n");
    }
    expectFailure({"explain", "XERR_NOET"}, 3,
                  "no such result code: XERR_NOET\nbridgectl: did you mean XERR_NOENT?");
    EXPECT_EQ(json({"explain", "--json"}).size(), 133u);
}

TEST_F(BridgectlJsonTest, VersionPrintsProgramAndLibrary) {
    EXPECT_EQ(json({"version", "--json"}).dump(), std::string(R"({"bridgectl":")") +
                                                      kProductVersion + R"(","library":")" +
                                                      kProductVersion + R"("})");
    EXPECT_EQ(output({"--version"}), output({"version"}));
}

TEST_F(BridgectlJsonTest, EveryCommandHasAnExampleAndItsGroupASummary) {
    const Json program = json({"help", "--json"});
    for (const Json& command : program["commands"]) {
        EXPECT_NE(command["summary"], "") << command["name"];
        EXPECT_NE(command["details"].get<std::string>().find("Example: bridgectl "),
                  std::string::npos)
            << command["name"];
    }
    EXPECT_NE(output({"help"}).find("\nConfiguration:\n  conf get "), std::string::npos);
}
