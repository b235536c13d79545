#ifndef XPL_XCATCHALL_H
#define XPL_XCATCHALL_H

#include <exception>

#include "xpl/Xlog.h"

// Stops C++ exceptions where the library is entered by its host, by Qt or by a new thread.

// Returns call(). When it throws, logs the exception under the function's name and returns
// `failure`.
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

// The same for a call without a result. Returns false when it throws.
template <typename Call>
bool xcatchAll(const XlogModule& module, const char* function, Call call) noexcept {
    return xcatchAll(module, function, false, [&call] {
        call();
        return true;
    });
}

#endif
