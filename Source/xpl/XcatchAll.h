#ifndef XPL_XCATCHALL_H
#define XPL_XCATCHALL_H

#include <exception>

#include "xpl/Xlog.h"

// A place that no C++ exception passes: the library's border to its host, to Qt and to its own
// threads.

// Returns call(), or `failure` when it throws, which is logged with the function's name.
template <typename Result, typename Call>
Result xcatchAll(const XlogModule& module, const char* function, Result failure,
                 Call call) noexcept {
    try {
        return call();
    } catch (const std::exception& e) {
        xlogException(module, function, e.what());
    } catch (...) {
        xlogException(module, function, "unknown exception");
    }
    return failure;
}

// The same for a call without a result. False when it throws.
template <typename Call>
bool xcatchAll(const XlogModule& module, const char* function, Call call) noexcept {
    return xcatchAll(module, function, false, [&call] {
        call();
        return true;
    });
}

#endif
