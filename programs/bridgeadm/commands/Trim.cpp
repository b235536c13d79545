// bridgeadm trim
#include "Session.h"
#include "shared/Command.h"
#include "shared/OptionParser.h"
#include "utl/UtlProcess.h"
#include "xpl/Xerr.h"

namespace {

void run(Session& session) {
    if (!session.start() || !session.requireInstallFolder()) return;
    if (const XErr err = utlTrimMemoryAllProcs(); err != XERR_SUCCESS) {
        session.failStatus(ExitCode::Library, "not trimmed", err);
        return;
    }
    session.print("trimmed the product's processes\n");
}

void declare(OptionParser& parser, Session& session) {
    parser.onRun([&session] { run(session); });
}

}  // namespace

extern const Command commandTrim;
const Command commandTrim{"", "trim", "Empties the working sets of the product's processes",
                          "Those that run from the install folder; the log names each.\n"
                          "Example: bridgeadm trim",
                          declare};
