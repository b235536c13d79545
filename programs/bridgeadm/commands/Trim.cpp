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
const Command commandTrim{
    "Other",
    "",
    "trim",
    "Empty the working sets of the product's processes",
    "Example: bridgeadm trim\n"
    "Affects the processes whose programs are in the install folder. The log names each.",
    declare};
