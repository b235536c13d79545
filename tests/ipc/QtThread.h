#ifndef TESTS_IPC_QTTHREAD_H
#define TESTS_IPC_QTTHREAD_H

#include "support/DeliveringThread.h"
#include "support/TestHeaders.h"

// Runs `call` on a Qt thread that delivers events without an application object.
template <typename Call>
void onQtThread(Call call) {
    const std::unique_ptr<QThread> thread(QThread::create([call] {
        const DeliveringThread delivering;
        call();
    }));
    thread->start();
    ASSERT_TRUE(thread->wait(60'000));
}

#endif
