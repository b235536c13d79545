// bridgectl uses the library from a command line.
#include <initializer_list>
#include <utility>
#include <vector>

#include "LibraryVersion.h"
#include "Session.h"
#include "shared/CommandLine.h"
#include "shared/Console.h"
#include "shared/ExitCode.h"
#include "shared/OptionParser.h"

namespace {

void declareOutputOptions(OptionParser& parser, Session& session) {
    const char* const heading = "Output options";
    parser.addFlag("--json", session.json, "Print JSON").under(heading);
    parser.addFlag("--quiet", session.quiet, "Print only results and errors").under(heading);
    parser
        .addFlag("--timing", session.timing,
                 "Print the time spent in the library on standard error")
        .under(heading);
}

void declareFolderOptions(OptionParser& parser, Session& session) {
    const char* const heading = "Development options (both or neither)";
    Option data = parser.add("--data-folder", session.dataFolder,
                             "Data folder to use instead of the registry's");
    Option install = parser.add("--install-folder", session.installFolder,
                                "Install folder to use instead of the registry's");
    data.taking("FOLDER").notEmpty().needs(install).under(heading);
    install.taking("FOLDER").notEmpty().needs(data).under(heading);
    parser.onParsed([&session] { session.useFolders(); });
}

void declareOptions(OptionParser& parser, Session& session) {
    parser
        .add("--client", session.client,
             "Client id: Launcher, Installer, LogCollector, Helper or Uninstaller")
        .taking("ID")
        .notEmpty()
        .withDefault();
    parser.add("--log-file", session.logFile, "Log to this file instead of the product's log")
        .taking("FILE")
        .notEmpty();
    parser.addFlag("--no-conf", session.noConf,
                   "Use the defaults instead of the configuration file");
    declareFolderOptions(parser, session);
    declareOutputOptions(parser, session);
}

constexpr std::initializer_list<std::pair<const char*, const char*>> kElsewhere = {
    {"copy-instance", "it is a command of bridgeadm: see bridgeadm help copy-instance"},
    {"remove-instance", "it is a command of bridgeadm: see bridgeadm help remove-instance"},
    {"dump-instance", "it is a command of bridgeadm: see bridgeadm help dump-instance"},
    {"copy", "instances are copied by bridgeadm: see bridgeadm help copy-instance"},
    {"remove", "instances are removed by bridgeadm: see bridgeadm help remove-instance"},
    {"dump", "instances are dumped by bridgeadm: see bridgeadm help dump-instance"},
};

std::vector<ExitCode> allExitCodes() {
#define PROGRAM_CODE(name, number, meaning) ExitCode::name,
    return {PROGRAM_EXIT_CODES(PROGRAM_CODE)};
#undef PROGRAM_CODE
}

}  // namespace

const char* const programName = "bridgectl";

int main() {
    Session session;
    const int code =
        runCommandLine({"Inspect and control the product from a command line",
                        programVersions(),
                        {"Configuration", "Instances and apps", "Events", "Diagnosis", "Help"},
                        allExitCodes(),
                        declareOptions,
                        declareOutputOptions,
                        kElsewhere},
                       session, session);
    session.stop();
    session.printTimes();
    return code;
}
