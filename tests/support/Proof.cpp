#include "support/Proof.h"

#include <cstdlib>
#include <string_view>

int proofSize(int shortForm, int fullForm) {
    const char* const wanted = std::getenv("BRIDGE_PROOF");
    return wanted != nullptr && std::string_view(wanted) == "full" ? fullForm : shortForm;
}
