#ifndef TESTS_DELIVERINGTHREAD_H
#define TESTS_DELIVERINGTHREAD_H

#include <private/qthread_p.h>
#include <QThread>
#include <utility>

// While it lives, Qt delivers events to this thread without an application object.
class DeliveringThread {
 public:
    DeliveringThread() : before_(std::exchange(data()->requiresCoreApplication, false)) {}
    ~DeliveringThread() { data()->requiresCoreApplication = before_; }
    DeliveringThread(const DeliveringThread&) = delete;
    DeliveringThread& operator=(const DeliveringThread&) = delete;

 private:
    static QThreadData* data() { return QThreadData::get2(QThread::currentThread()); }

    const bool before_;
};

#endif
