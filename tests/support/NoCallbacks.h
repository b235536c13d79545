#ifndef TESTS_NOCALLBACKS_H
#define TESTS_NOCALLBACKS_H

#include <tuple>

// The arguments of bridgeRegisterCallbacks(), all null.
template <typename... Callbacks>
std::tuple<Callbacks...> noCallbacks(void (*)(Callbacks...)) {
    return {};
}

#endif
