// The watcher of an event, on a thread whose event loop the test runs.
#include "ipc/IpcEventWatcherWinnt.h"

#include <QEventLoop>

#include "QtThread.h"
#include "support/Platform.h"
#include "support/WindowsForTests.h"

namespace {

// A watcher and its event, and the calls that it makes in this thread's event loop.
struct Watched {
    int calls = 0;
    QThread* thread = nullptr;
    QEventLoop loop;
    IpcEventWatcher watcher{[this] {
        ++calls;
        thread = QThread::currentThread();
        loop.quit();
    }};

    void set() const { ::SetEvent(watcher.handle()); }
};

bool isSet(const IpcEventWatcher& watcher) {
    return ::WaitForSingleObject(watcher.handle(), 0) == WAIT_OBJECT_0;
}

}  // namespace

TEST(IpcEventWatcherTest, EachSettingOfTheEventIsACallOnTheThreadOfTheWatcher) {
    onQtThread([] {
        Watched event;
        ASSERT_TRUE(event.watcher.watch());
        for (int i = 1; i <= 100; ++i) {
            event.set();
            event.loop.exec();
            EXPECT_EQ(event.calls, i);
            EXPECT_EQ(event.thread, QThread::currentThread());
            EXPECT_FALSE(isSet(event.watcher));
        }
    });
}

TEST(IpcEventWatcherTest, ASettingBeforeTheWatchIsACall) {
    onQtThread([] {
        Watched event;
        event.set();
        ASSERT_TRUE(event.watcher.watch());
        event.loop.exec();
        EXPECT_EQ(event.calls, 1);
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

TEST(IpcEventWatcherTest, SettingsBeforeTheLoopRunsAreOneCall) {
    onQtThread([] {
        Watched event;
        ASSERT_TRUE(event.watcher.watch());
        for (int i = 0; i < 50; ++i) {
            event.set();
            while (isSet(event.watcher)) sleepMs(1);
        }
        event.loop.exec();
        event.loop.processEvents();
        EXPECT_EQ(event.calls, 1);
    });
}

TEST(IpcEventWatcherTest, AWatcherThatEndsWhileItsEventIsSetMakesNoCall) {
    onQtThread([] {
        for (int i = 0; i < 500; ++i) {
            int calls = 0;
            {
                IpcEventWatcher watcher([&calls] { ++calls; });
                ASSERT_TRUE(watcher.watch());
                if (i % 3 != 0) ::SetEvent(watcher.handle());
                if (i % 3 == 2) sleepMs(1);
            }
            QEventLoop().processEvents();
            EXPECT_EQ(calls, 0);
        }
    });
}

TEST(IpcEventWatcherTest, AWatcherThatNeverWatchedEnds) {
    const IpcEventWatcher watcher([] { FAIL(); });
    EXPECT_NE(watcher.handle(), nullptr);
    EXPECT_FALSE(isSet(watcher));
}
