// QX-Player.exe, standing in for the player of one instance.
#include "Standin.h"
#include "StandinCommandLine.h"

int main() {
    Standin standin;
    if (!standin.start()) return 2;
    const auto instance = standinOption(standin.arguments(), "instance");
    if (!instance) {
        standin.say("error", "no --instance");
        return 2;
    }
    standin.serve("vtr_plr_" + *instance + "_nvo", standinPlayerRequests());
    return 0;
}
