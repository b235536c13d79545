#ifndef TESTS_DOTNETHOSTS_H
#define TESTS_DOTNETHOSTS_H

#include <cstdint>
#include <string>

#include "BindingHosts.h"
#include "EveryEvent.h"

// The status of a .NET host after a fatal break. The runtime passes the break to
// RaiseFailFastException, after which Wine ends the process with this status.
constexpr std::uint32_t kFatalStatusInDotnet = 0xC0000602;

// The configuration, unless a test writes another.
constexpr const char* kConf =
    "vtr.enable_adb_access=\"0\"\n"
    "vtr.instance.Nougat64.cpus=\"4\"\n"
    "vtr.instance.Nougat64.display_name=\"Größe 日本\"\n"
    "vtr.instance.Nougat64.dpi=\"240\"\n"
    "vtr.instance.Nougat64.ram=\"4096\"\n"
    "vtr.shared_folders=\"a,b\"\n";

// Hosts of the C# binding in .NET for Windows.
class DotnetTest : public PlainHostTest {
 protected:
    DotnetTest() { writeConf(kConf); }

    ChildOptions standinOptions() const {
        ChildOptions options;
        options.environment = {{"QX_STANDIN_CLIENTS", "Uninstaller"},
                               {"QX_STANDIN_OUTPUT", data / "standin.txt"},
                               {"QX_STANDIN_SCRIPT", data / "standin.script"}};
        return options;
    }

    ChildProcess startHost(const Script& scenario) const {
        Script all{environment("QX_DOTNET_HOST"), library, data.path(), installFolder};
        all.insert(all.end(), scenario.begin(), scenario.end());
        return ChildProcess(environment("QX_DOTNET"), all, standinOptions());
    }

    Lines played(const Script& scenario) const {
        ChildProcess host = startHost(scenario);
        return linesUpToTheEnd(host);
    }

    // Starts a player that sends the script's events as soon as the host listens.
    ChildProcess startPlayer(ChildProcess& host, const std::string& script) const {
        data.write("standin.script", script);
        EXPECT_EQ(host.readLine(), "listening");
        return ChildProcess(standinProgram("QX-Player.exe"), {"--instance", "DotnetTest"},
                            standinOptions());
    }

    // The lines of a host that gets these events.
    Lines playedWithEvents(const Script& scenario, const std::string& script) const {
        ChildProcess host = startHost(scenario);
        const ChildProcess player = startPlayer(host, script);
        return linesUpToTheEnd(host);
    }

    static void expectResult(const ChildResult& result, std::uint32_t status,
                             const std::string& out) {
        EXPECT_EQ(result.status, status);
        EXPECT_EQ(result.out, out);
        EXPECT_EQ(result.err, "");
    }

    void expectFatal(ChildProcess& host) const {
        expectResult(host.finish(), kFatalStatusInDotnet, "");
        EXPECT_EQ(
            log().back().rfind("E UTL Uninstaller_bridge FATAL: DEBUG BREAK: Source/utl/Utl:", 0),
            0u)
            << log().back();
    }

    // A host of Scenario.cs. Tabs separate the words of a step.
    ChildProcess startSteps(const Script& steps, const std::string& folder) const {
        Script all{environment("QX_DOTNET_SCENARIO"), library, folder, installFolder};
        all.insert(all.end(), steps.begin(), steps.end());
        ChildOptions options = standinOptions();
        options.environment.emplace_back("QX_STANDIN_SECONDS",
                                         "1");  // those keep the host's output open
        return ChildProcess(environment("QX_DOTNET"), all, options);
    }

    Lines playedSteps(const Script& steps) const {
        ChildProcess host = startSteps(steps, data.path());
        return linesUpToTheEnd(host);
    }

    bool confHas(const std::string& line) const {
        return data.read("vantrel.conf").find(line + "\n") != std::string::npos;
    }

    std::string library = builtProgram("QX-Bridge.dll");
    std::string installFolder = "C:\\None\\";
};

#endif
