#ifndef IPC_IPCEVENTWATCHERWINNT_H
#define IPC_IPCEVENTWATCHERWINNT_H

#include <QThread>
#include <atomic>
#include <functional>

// Waits for a Windows event object on its own thread. Each time the event is set, posts a call to
// the thread that created the watcher, which runs an event loop.
//
// Not a QWinEventNotifier, which uses the system's thread pool: under Wine a pool callback can
// start after its wait was unregistered, when the notifier or the library is gone. This thread is
// joined.
class IpcEventWatcher : public QThread {
 public:
    using Callback = std::function<void()>;

    // The event loop calls `activated`, at most once per iteration.
    explicit IpcEventWatcher(Callback activated);

    // No call follows this.
    ~IpcEventWatcher() override;

    // Returns false, and watches nothing, when no event or thread can be created.
    [[nodiscard]] bool watch();

    // A HANDLE of a manual-reset event, as overlapped operations need it. The watcher resets it
    // before each call, so what happens during a call leads to another call.
    void* handle() const { return event_; }

 protected:
    void run() override;

 private:
    void post();

    const Callback activated_;
    void* const event_;
    std::atomic<bool> posted_{false};  // a call is queued
};

#endif
