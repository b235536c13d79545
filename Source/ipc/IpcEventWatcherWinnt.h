#ifndef IPC_IPCEVENTWATCHERWINNT_H
#define IPC_IPCEVENTWATCHERWINNT_H

#include <QThread>
#include <atomic>
#include <functional>

// Waits for an event of the system on a thread of its own. Each time the event is set, it posts a
// call to the thread that it was made on, which runs an event loop.
//
// Not a QWinEventNotifier, for which a thread of the system's pool waits: under Wine a callback of
// the pool can still begin after its wait has been taken back, and then the notifier is gone, or
// the library itself. This thread is joined.
class IpcEventWatcher : public QThread {
 public:
    using Callback = std::function<void()>;

    // The event loop calls `activated`, at most once in each of its rounds.
    explicit IpcEventWatcher(Callback activated);

    // No call comes after this.
    ~IpcEventWatcher() override;

    // False, with nothing watched, when the system has no event or no thread left.
    [[nodiscard]] bool watch();

    // A HANDLE, for manual reset as overlapped operations need it. It is reset by the watcher: what
    // happens before a call is there to be seen in it, and what happens during one leads to
    // another.
    void* handle() const { return event_; }

 protected:
    void run() override;

 private:
    void post();

    const Callback activated_;
    void* const event_;
    std::atomic<bool> posted_{false};  // and the call is still to come
};

#endif
