#ifndef BRIDGE_BRIDGEFENCE_H
#define BRIDGE_BRIDGEFENCE_H

#include <initializer_list>

#include "bridge/BridgeLog.h"
#include "xpl/Xerr.h"
#include "xpl/Xfence.h"

// What stands between the library and its host: no C++ exception leaves it, and no null text
// enters it.

// Logs the error line of a null text, with the function's name.
void bridgeLogNullArgument(const char* function) noexcept;

// Answers call(), or `failure` when it throws.
template <typename Result, typename Call>
Result bridgeFence(const char* function, Result failure, Call call) noexcept {
    return xfence(kLog, function, failure, call);
}

using BridgeTexts = std::initializer_list<const char*>;

inline bool bridgeHasNull(BridgeTexts texts) {
    for (const char* text : texts) {
        if (text == nullptr) return true;
    }
    return false;
}

// An export that answers a status: 22 for a null text, -1 for an exception.
template <typename Call>
XErr bridgeStatus(const char* function, BridgeTexts texts, Call call) noexcept {
    if (bridgeHasNull(texts)) {
        bridgeLogNullArgument(function);
        return XERR_INVAL;
    }
    return bridgeFence(function, XErr{XERR_FAILURE}, call);
}

// An export that answers a value: 0, false or null for a null text or an exception.
template <typename Result, typename Call>
Result bridgeValue(const char* function, BridgeTexts texts, Call call) noexcept {
    if (bridgeHasNull(texts)) {
        bridgeLogNullArgument(function);
        return Result{};
    }
    return bridgeFence(function, Result{}, call);
}

#endif
