// QX-MultiInstanceManager.exe, standing in for the multi-instance manager.
#include "Standin.h"

int main() {
    Standin standin;
    if (!standin.start()) return 2;
    standin.serve("vtr_mim_nvo", standinManagerRequests());
    return 0;
}
