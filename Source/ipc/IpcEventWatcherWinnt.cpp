#include "ipc/IpcEventWatcherWinnt.h"

#include <utility>

#include "ipc/IpcServer.h"
#include "xpl/XcatchAll.h"
#include "xpl/XwindowsLean.h"

namespace {

// Before the retry of a call for which there was no memory.
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
        // After the reset: an end that is asked for now sets the event again.
        if (isInterruptionRequested()) return;
        post();
    }
}

// At most one queued call. With one for each setting, calls that set the event themselves would
// multiply, and the event loop would come to nothing else.
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
    // Without a call the setting would be lost: retry.
    posted_ = false;
    msleep(kRetryMilliseconds);
    ::SetEvent(event_);
}
