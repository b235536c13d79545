#ifndef XPL_XMUTEXNAMED_H
#define XPL_XMUTEXNAMED_H

#include <chrono>
#include <cstdint>
#include <string>

#include "xpl/Xattributes.h"
#include "xpl/Xlog.h"

// A machine-wide mutex that every process of the product can open, whatever its user or elevation.
// It belongs to the thread that locked it and is recursive there; use it with the usual scoped
// locks. A holder that died is taken over from without a repair step: what the mutex guards must be
// whole at every moment.
class XTS_CAPABILITY("mutex") XmutexNamed {
 public:
    XmutexNamed() = default;
    ~XmutexNamed() { close(); }
    XmutexNamed(const XmutexNamed&) = delete;
    XmutexNamed& operator=(const XmutexNamed&) = delete;

    // Creates or opens the mutex of that full name (UTF-8, namespace included) and lets go of the
    // one it had. Returns 0, or -1 after a log line.
    [[nodiscard]] std::int32_t init(const std::string& name);

    // Closes the handle.
    void close() noexcept;

    // Waits without limit. A wait that fails is fatal.
    void lock() XTS_ACQUIRE();

    // Does not wait. A wait that fails is logged and counts as not acquired.
    bool try_lock() XTS_TRY_ACQUIRE(true);

    // Waits so long at most. A wait that fails is fatal.
    bool try_lock_for(std::chrono::milliseconds limit) XTS_TRY_ACQUIRE(true);

    // A release that fails is fatal.
    void unlock() XTS_RELEASE();

    // Of the last init().
    const std::string& name() const { return name_; }

 private:
    void* handle_ = nullptr;
    std::string name_;
};

// Holds the mutex as long as it lives. When that takes more than a second to begin, two warnings
// under the module's tag say that `function` waits and how long it did: another program has the
// mutex, and without them nothing would show why this one stands still.
class XTS_SCOPED_CAPABILITY XnamedGuard {
 public:
    XnamedGuard(XmutexNamed& mutex, const XlogModule& module, const char* function)
        XTS_ACQUIRE(mutex);
    ~XnamedGuard() XTS_RELEASE();
    XnamedGuard(const XnamedGuard&) = delete;
    XnamedGuard& operator=(const XnamedGuard&) = delete;

 private:
    XmutexNamed& mutex_;
};

#endif
