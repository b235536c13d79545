#ifndef XPL_XFENCE_H
#define XPL_XFENCE_H

#include <exception>

#include "xpl/Xlog.h"

// A place that no C++ exception passes: the library's border to its host, to Qt and to its own
// threads.

// Logs the error line of an exception, with the function's name.
void xfenceLog(const XlogModule& module, const char* function, const char* what) noexcept;

// Answers call(), or `failure` when it throws, which is logged.
template <typename Result, typename Call>
Result xfence(const XlogModule& module, const char* function, Result failure, Call call) noexcept {
    try {
        return call();
    } catch (const std::exception& e) {
        xfenceLog(module, function, e.what());
    } catch (...) {
        xfenceLog(module, function, "unknown exception");
    }
    return failure;
}

#endif
