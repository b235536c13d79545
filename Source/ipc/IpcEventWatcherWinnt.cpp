#include "ipc/IpcEventWatcherWinnt.h"

#include <utility>

#include "ipc/IpcServer.h"
#include "xpl/XcatchAll.h"
#include "xpl/XwindowsLean.h"

namespace {

// Delay before retrying a call that failed for lack of memory.
constexpr unsigned long kRetryMilliseconds = 100;

}  // namespace

IpcEventWatcher::IpcEventWatcher(Callback activated)
    : activated_(std::move(activated)),
      event_(::CreateEventW(nullptr, /*bManualReset=*/TRUE, FALSE, nullptr)) {
    setObjectName(QStringLiteral("IpcEventWatcher"));
}

IpcEventWatcher::~IpcEventWatcher() {
    if (event_ == nullptr) return;
    requestInterruption();
    ::SetEvent(event_);
    wait();
    ::CloseHandle(event_);
}

bool IpcEventWatcher::watch() {
    if (event_ == nullptr) return false;
    start();
    return isRunning();
}

void IpcEventWatcher::run() {
    while (::WaitForSingleObject(event_, INFINITE) == WAIT_OBJECT_0) {
        ::ResetEvent(event_);
        // Checked after the reset: a later request to end sets the event again.
        if (isInterruptionRequested()) return;
        post();
    }
}

// At most one queued call; further notifications are coalesced. Otherwise calls that set the event
// themselves would multiply and starve the event loop.
void IpcEventWatcher::post() {
    if (posted_.exchange(true)) return;
    const auto call = [this] {
        posted_ = false;
        activated_();
    };
    const bool queued = xcatchAll(kIpcServerLog, "IpcEventWatcher", false, [this, call] {
        return QMetaObject::invokeMethod(this, call, Qt::QueuedConnection);
    });
    if (queued) return;
    // Retry, or the notification would be lost.
    posted_ = false;
    msleep(kRetryMilliseconds);
    ::SetEvent(event_);
}
