#include "xpl/Xfence.h"

void xfenceLog(const XlogModule& module, const char* function, const char* what) noexcept {
    XLOG_E(module, "%s: exception: %s", function, what);
}
