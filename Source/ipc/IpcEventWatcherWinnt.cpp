#include "ipc/IpcEventWatcherWinnt.h"

#include <utility>

#include "ipc/IpcServerLog.h"
#include "xpl/XcatchAll.h"
#include "xpl/XwindowsLean.h"

namespace {

// Until a call is tried again for which there was no memory.
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
        // Behind the reset: an end that is asked for now sets the event once more.
        if (isInterruptionRequested()) return;
        tell();
    }
}

// One call is on its way at most. With one for each setting, calls that set the event themselves
// would become more and more, and the event loop would come to nothing else.
void IpcEventWatcher::tell() {
    if (told_.exchange(true)) return;
    const auto call = [this] {
        told_ = false;
        activated_();
    };
    const bool posted = xcatchAll(kLog, "IpcEventWatcher", false, [this, call] {
        return QMetaObject::invokeMethod(this, call, Qt::QueuedConnection);
    });
    if (posted) return;
    // Nobody else would tell of what has happened.
    told_ = false;
    msleep(kRetryMilliseconds);
    ::SetEvent(event_);
}
