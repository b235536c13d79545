// bridgectl: the library from a command line.
#include <CLI/CLI.hpp>

#include "CommandLine.h"
#include "Console.h"
#include "LibraryVersion.h"
#include "Session.h"

namespace {

void declareOutputOptions(CLI::App& parser, Session& session) {
    const char* const group = "Output";
    parser.add_flag("--json", session.json, "Print JSON")->group(group);
    parser.add_flag("--quiet", session.quiet, "Print results and errors only")->group(group);
    parser.add_flag("--timing", session.timing, "Print the time in the library on standard error")
        ->group(group);
}

void declareOptions(CLI::App& app, Session& session) {
    app.add_option("--client", session.client,
                   "Client id: Launcher, Installer, LogCollector, Helper or Uninstaller")
        ->capture_default_str();
    app.add_option("--log-file", session.logFile, "Log into this file instead of the product's");
    app.add_flag("--no-conf", session.noConf, "Start with the defaults, without the file");
    declareOutputOptions(app, session);
}

}  // namespace

const char* const programName = "bridgectl";

int main() {
    Session session;
    const int code = runCommandLine({"The bridge native library from a command line.",
                                     programVersions(), declareOptions, declareOutputOptions},
                                    session, session);
    session.stop();
    session.printTimes();
    return code;
}
