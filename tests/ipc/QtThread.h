#ifndef TESTS_IPC_QTTHREAD_H
#define TESTS_IPC_QTTHREAD_H

#include "support/TestHeaders.h"

#include <private/qthread_p.h>
#include <QThread>

// Runs `call` on a thread of Qt's, which delivers without an application object.
template <typename Call>
void onQtThread(Call call) {
    const std::unique_ptr<QThread> thread(QThread::create([call] {
        QThreadData::get2(QThread::currentThread())->requiresCoreApplication = false;
        call();
    }));
    thread->start();
    ASSERT_TRUE(thread->wait(60'000));
}

#endif
