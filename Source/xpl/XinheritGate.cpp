#include "xpl/XinheritGate.h"

std::mutex& xinheritGate() noexcept {
    static std::mutex gate;
    return gate;
}
