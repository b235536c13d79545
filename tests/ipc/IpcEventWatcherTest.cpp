// The watcher of an event, on a thread with an event loop that the test runs.
#include "ipc/IpcEventWatcherWinnt.h"

#include <QEventLoop>

#include "QtThread.h"
#include "support/Platform.h"
#include "support/WindowsForTests.h"

namespace {

// How often the event loop of this thread has been told, and where.
struct Told {
    int times = 0;
    QThread* thread = nullptr;
    QEventLoop loop;

    void operator()() {
        ++times;
        thread = QThread::currentThread();
        loop.quit();
    }
};

bool isSet(const IpcEventWatcher& watcher) {
    return ::WaitForSingleObject(watcher.handle(), 0) == WAIT_OBJECT_0;
}

}  // namespace

TEST(IpcEventWatcherTest, EachTimeTheEventIsSetTheThreadThatMadeTheWatcherIsTold) {
    onQtThread([] {
        Told told;
        IpcEventWatcher watcher([&told] { told(); });
        ASSERT_TRUE(watcher.watch());
        for (int i = 1; i <= 100; ++i) {
            ::SetEvent(watcher.handle());
            told.loop.exec();
            EXPECT_EQ(told.times, i);
            EXPECT_EQ(told.thread, QThread::currentThread());
            EXPECT_FALSE(isSet(watcher));
        }
    });
}

TEST(IpcEventWatcherTest, WhatWasSetBeforeTheWatchIsTold) {
    onQtThread([] {
        Told told;
        IpcEventWatcher watcher([&told] { told(); });
        ::SetEvent(watcher.handle());
        ASSERT_TRUE(watcher.watch());
        told.loop.exec();
        EXPECT_EQ(told.times, 1);
    });
}

TEST(IpcEventWatcherTest, ASettingDuringACallLeadsToAnother) {
    onQtThread([] {
        int calls = 0;
        QEventLoop loop;
        std::unique_ptr<IpcEventWatcher> watcher;
        watcher = std::make_unique<IpcEventWatcher>([&] {
            if (++calls == 1) {
                ::SetEvent(watcher->handle());
            } else {
                loop.quit();
            }
        });
        ASSERT_TRUE(watcher->watch());
        ::SetEvent(watcher->handle());
        loop.exec();
        EXPECT_EQ(calls, 2);
    });
}

TEST(IpcEventWatcherTest, SettingsThatABusyLoopHasNotBeenToldOfAreOneCall) {
    onQtThread([] {
        Told told;
        IpcEventWatcher watcher([&told] { told(); });
        ASSERT_TRUE(watcher.watch());
        for (int i = 0; i < 50; ++i) {
            ::SetEvent(watcher.handle());
            while (isSet(watcher)) sleepMs(1);
        }
        told.loop.exec();
        told.loop.processEvents();
        EXPECT_EQ(told.times, 1);
    });
}

// However the end and the setting meet: nothing waits on, and nothing is told to what is gone.
TEST(IpcEventWatcherTest, AWatcherThatEndsWhileItsEventIsSetTellsNobody) {
    onQtThread([] {
        for (int i = 0; i < 500; ++i) {
            Told told;
            {
                IpcEventWatcher watcher([&told] { told(); });
                ASSERT_TRUE(watcher.watch());
                if (i % 3 != 0) ::SetEvent(watcher.handle());
                if (i % 3 == 2) sleepMs(1);
            }
            told.loop.processEvents();
            EXPECT_EQ(told.times, 0);
        }
    });
}

TEST(IpcEventWatcherTest, AWatcherThatNeverWatchedEnds) {
    const IpcEventWatcher watcher([] { FAIL(); });
    EXPECT_NE(watcher.handle(), nullptr);
    EXPECT_FALSE(isSet(watcher));
}
