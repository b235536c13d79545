// QX-MultiInstanceManager.exe: a stand-in for the multi-instance manager.
#include "Standin.h"
#include "StandinDecode.h"

int main() {
    Standin standin;
    if (!standin.start()) return Standin::kMisuse;
    if (const auto status = standin.runOption()) return *status;
    standin.serve("vtr_mim_nvo", standinManagerRequests());
    return Standin::kDone;
}
