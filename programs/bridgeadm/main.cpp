// bridgeadm maintains the product's data. It links the layers of the library, not the DLL.
#include <initializer_list>
#include <string>
#include <utility>

#include "Session.h"
#include "shared/CommandLine.h"
#include "shared/Console.h"
#include "shared/OptionParser.h"
#include "utl/UtlImages.h"

namespace {

void declareOptions(OptionParser& parser, Session& session) {
    parser.add("--log-file", session.logFile, "Log to this file instead of the product's log")
        .taking("FILE")
        .notEmpty();
}

constexpr std::initializer_list<std::pair<const char*, const char*>> kElsewhere = {
    {"apps", "it is a command of bridgectl: see bridgectl help apps"},
    {"conf", "it is a command of bridgectl: see bridgectl help conf"},
    {"create-instance", "it is a command of bridgectl: see bridgectl help create-instance"},
    {"doctor", "it is a command of bridgectl: see bridgectl help doctor"},
    {"instances", "it is a command of bridgectl: see bridgectl help instances"},
    {"uninstall", "it is a command of bridgectl: see bridgectl help uninstall"},
};

}  // namespace

const char* const programName = "bridgeadm";

int main() {
    Session session;
    return runCommandLine(
        {"Maintain the product's instances and their app caches",
         std::string(programName) + " " + UTL_VERSION,
         {"Instances", "App caches", "Other"},
         {ExitCode::Success, ExitCode::Usage, ExitCode::UnknownName, ExitCode::BadValue,
          ExitCode::Library, ExitCode::Commit, ExitCode::Output},
         declareOptions,
         nullptr,
         kElsewhere},
        session, session);
}
