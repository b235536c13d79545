#ifndef XPL_XMUTEXNAMED_H
#define XPL_XMUTEXNAMED_H

#include <chrono>
#include <cstdint>
#include <string>

#include "xpl/Xattributes.h"
#include "xpl/Xlog.h"

// A machine-wide mutex that every process of the product can open, whatever its user or elevation.
// Recursive, owned by the thread that locked it; use it with std::lock_guard. When an owner dies,
// the next thread gets the mutex without a repair step, so the guarded state must be consistent at
// all times.
class XTS_CAPABILITY("mutex") XmutexNamed {
 public:
    XmutexNamed() = default;
    ~XmutexNamed() { close(); }
    XmutexNamed(const XmutexNamed&) = delete;
    XmutexNamed& operator=(const XmutexNamed&) = delete;

    // Creates or opens the mutex of that full name (UTF-8, with its namespace) and closes the
    // previous one. Returns 0, or -1 after logging the error.
    [[nodiscard]] std::int32_t init(const std::string& name);

    // Closes the handle.
    void close() noexcept;

    // Waits without limit. A wait that fails is fatal.
    void lock() XTS_ACQUIRE();

    // Does not wait. A wait that fails is logged and counts as not acquired.
    bool try_lock() XTS_TRY_ACQUIRE(true);

    // Waits at most this long. A wait that fails is fatal.
    bool try_lock_for(std::chrono::milliseconds limit) XTS_TRY_ACQUIRE(true);

    // A release that fails is fatal.
    void unlock() XTS_RELEASE();

    // The name passed to the last init().
    const std::string& name() const { return name_; }

 private:
    void* handle_ = nullptr;
    std::string name_;
};

// Locks the mutex for its lifetime. When the lock takes more than a second, logs two warnings under
// the module's tag: that `function` is waiting, and then for how long it waited. Without them
// nothing would show that another program has the mutex.
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
