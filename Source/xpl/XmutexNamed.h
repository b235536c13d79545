#ifndef XPL_XMUTEXNAMED_H
#define XPL_XMUTEXNAMED_H

#include <cstdint>
#include <string>

#include "xpl/Xattributes.h"

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

    // A release that fails is fatal.
    void unlock() XTS_RELEASE();

 private:
    void* handle_ = nullptr;
};

#endif
