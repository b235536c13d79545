// bridgeadm: maintenance of the product's data, with the layers of the library and without its DLL.
#include <string>

#include "Session.h"
#include "shared/CommandLine.h"
#include "shared/Console.h"
#include "shared/OptionParser.h"
#include "utl/UtlImages.h"

namespace {

void declareOptions(OptionParser& parser, Session& session) {
    parser.add("--log-file", session.logFile, "Log into this file instead of the product's")
        .notEmpty();
}

}  // namespace

const char* const programName = "bridgeadm";

int main() {
    Session session;
    return runCommandLine({"Maintenance of the product's instances and their app caches.",
                           std::string(programName) + " " + UTL_VERSION,
                           declareOptions,
                           nullptr,
                           {}},
                          session, session);
}
