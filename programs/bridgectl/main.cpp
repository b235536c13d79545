// bridgectl: the library from a command line.
#include <initializer_list>
#include <utility>

#include "LibraryVersion.h"
#include "Session.h"
#include "shared/CommandLine.h"
#include "shared/Console.h"
#include "shared/OptionParser.h"

namespace {

void declareOutputOptions(OptionParser& parser, Session& session) {
    const char* const heading = "Output";
    parser.addFlag("--json", session.json, "Print JSON").under(heading);
    parser.addFlag("--quiet", session.quiet, "Print results and errors only").under(heading);
    parser.addFlag("--timing", session.timing, "Print the time in the library on standard error")
        .under(heading);
}

void declareFolderOptions(OptionParser& parser, Session& session) {
    const char* const heading = "For development: both, in place of the registry's folders";
    Option data = parser.add("--data-folder", session.dataFolder, "The product's data folder");
    Option install =
        parser.add("--install-folder", session.installFolder, "The folder of its programs");
    data.notEmpty().needs(install).under(heading);
    install.notEmpty().needs(data).under(heading);
    parser.onParsed([&session] { session.useFolders(); });
}

void declareOptions(OptionParser& parser, Session& session) {
    parser
        .add("--client", session.client,
             "Client id: Launcher, Installer, LogCollector, Helper or Uninstaller")
        .notEmpty()
        .withDefault();
    parser.add("--log-file", session.logFile, "Log into this file instead of the product's")
        .notEmpty();
    parser.addFlag("--no-conf", session.noConf, "Start with the defaults, without the file");
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

}  // namespace

const char* const programName = "bridgectl";

int main() {
    Session session;
    const int code =
        runCommandLine({"The bridge native library from a command line.", programVersions(),
                        declareOptions, declareOutputOptions, kElsewhere},
                       session, session);
    session.stop();
    session.printTimes();
    return code;
}
