#ifndef BRIDGE_BRIDGEENTRY_H
#define BRIDGE_BRIDGEENTRY_H

#include <initializer_list>

#include "xpl/XcatchAll.h"
#include "xpl/Xerr.h"
#include "xpl/Xlog.h"

// All files of the exports log under one name.
constexpr XlogModule kLog{XlogTag::BRIDGE, "Source/bridge/Bridge"};

// The boundary between the library and its host: no C++ exception leaves, and no null text enters.

// Returns call(), or `failure` when it throws.
template <typename Result, typename Call>
Result bridgeCatchAll(const char* function, Result failure, Call call) noexcept {
    return xcatchAll(kLog, function, failure, call);
}

// The same for a call without a result.
template <typename Call>
void bridgeCatchAll(const char* function, Call call) noexcept {
    xcatchAll(kLog, function, call);
}

// Logs the error of a null text, with the function's name.
inline void bridgeLogNullArgument(const char* function) noexcept {
    XLOG_E(kLog, "%s: null argument", function);
}

using BridgeTexts = std::initializer_list<const char*>;

inline bool bridgeHasNull(BridgeTexts texts) {
    for (const char* text : texts) {
        if (text == nullptr) return true;
    }
    return false;
}

// For exports that return a status: 22 for a null text, -1 for an exception.
template <typename Call>
XErr bridgeStatus(const char* function, BridgeTexts texts, Call call) noexcept {
    if (bridgeHasNull(texts)) {
        bridgeLogNullArgument(function);
        return XERR_INVAL;
    }
    return bridgeCatchAll(function, XERR_FAILURE, call);
}

// For exports that return a value: 0, false or null for a null text or an exception.
template <typename Result, typename Call>
Result bridgeValue(const char* function, BridgeTexts texts, Call call) noexcept {
    if (bridgeHasNull(texts)) {
        bridgeLogNullArgument(function);
        return Result{};
    }
    return bridgeCatchAll(function, Result{}, call);
}

#endif
