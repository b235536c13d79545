// QX-Player.exe: a stand-in for the player of one instance.
#include "Standin.h"
#include "StandinCommandLine.h"
#include "StandinDecode.h"

int main() {
    Standin standin;
    if (!standin.start()) return Standin::kMisuse;
    if (const auto status = standin.runOption()) return *status;
    const auto instance = standinOption(standin.arguments(), "instance");
    if (!instance) {
        standin.say("error", "no --instance");
        return Standin::kMisuse;
    }
    standin.serve("vtr_plr_" + *instance + "_nvo", standinPlayerRequests());
    return Standin::kDone;
}
