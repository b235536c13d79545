// Waiting for a named mutex, and logging a long wait.
#include <chrono>

#include "xpl/Xlog.h"
#include "xpl/XmutexNamed.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kSilence{1000};

int millisecondsSince(Clock::time_point start) {
    using std::chrono::milliseconds;
    return static_cast<int>(std::chrono::duration_cast<milliseconds>(Clock::now() - start).count());
}

}  // namespace

XnamedGuard::XnamedGuard(XmutexNamed& mutex, const XlogModule& module, const char* function)
    : mutex_(mutex) {
    const Clock::time_point start = Clock::now();
    if (mutex_.try_lock_for(kSilence)) return;
    XLOG_W(module, "%s: waiting for %s for %d ms", function, mutex_.name().c_str(),
           millisecondsSince(start));
    mutex_.lock();
    XLOG_W(module, "%s: waited for %s for %d ms", function, mutex_.name().c_str(),
           millisecondsSince(start));
}

XnamedGuard::~XnamedGuard() { mutex_.unlock(); }
