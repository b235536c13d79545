// bridgectl: the library from a command line.
#include <bridge/bridge.h>

#include <CLI/CLI.hpp>

#include "CommandLine.h"
#include "Console.h"
#include "Session.h"

namespace {

void declareOptions(CLI::App& app, Session& session) {
    app.add_option("--client", session.client,
                   "Client id: Launcher, Installer, LogCollector, Helper or Uninstaller")
        ->capture_default_str();
    app.add_option("--log-file", session.logFile, "Log into this file instead of the product's");
    app.add_flag("--no-conf", session.noConf, "Start with the defaults, without the file");
}

}  // namespace

const char* const programName = "bridgectl";

int main() {
    Session session;
    return runCommandLine(
        {"The bridge native library from a command line.", BRIDGE_VERSION_TEXT, declareOptions},
        session, session);
}
