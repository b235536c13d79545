#include "support/TestHeaders.h"
#include "support/Threads.h"
#include "xpl/XsharedMutex.h"

namespace {

// Makes a call in a new thread, which may use another of the mutex's two locks.
template <typename Call>
auto inThread(Call call) {
    return std::async(std::launch::async, call);
}

template <typename Result>
bool isReadyWithin(std::future<Result>& future, std::chrono::milliseconds limit) {
    return future.wait_for(limit) == std::future_status::ready;
}

constexpr std::chrono::seconds kLong{20};
constexpr std::chrono::milliseconds kShort{30};

}  // namespace

TEST(XsharedMutexTest, AnyNumberOfThreadsReadAtTheSameTime) {
    XsharedMutex mutex;
    constexpr int kReaders = 12;  // more than the mutex has locks
    std::atomic<int> inside{0};
    inThreads(kReaders, [&](int) {
        const XsharedGuard reading(mutex);
        ++inside;
        while (inside < kReaders) std::this_thread::yield();
    });
    EXPECT_EQ(inside, kReaders);
}

TEST(XsharedMutexTest, AWriterWaitsForEveryReader) {
    XsharedMutex mutex;
    for (int reader = 0; reader < 8; ++reader) {
        std::promise<void> begun;
        std::promise<void> end;
        auto reading = inThread([&] {
            const XsharedGuard guard(mutex);
            begun.set_value();
            end.get_future().wait();
        });
        begun.get_future().wait();
        auto writing = inThread([&] { const std::lock_guard<XsharedMutex> guard(mutex); });
        EXPECT_FALSE(isReadyWithin(writing, kShort)) << reader;
        end.set_value();
        EXPECT_TRUE(isReadyWithin(writing, kLong)) << reader;
    }
}

TEST(XsharedMutexTest, ReadersAndWritersWaitForAWriter) {
    XsharedMutex mutex;
    std::vector<std::future<void>> waiting;
    {
        const std::lock_guard<XsharedMutex> guard(mutex);
        for (int i = 0; i < 8; ++i) {
            waiting.push_back(inThread([&] { const XsharedGuard reading(mutex); }));
        }
        waiting.push_back(inThread([&] { const std::lock_guard<XsharedMutex> other(mutex); }));
        for (auto& other : waiting) EXPECT_FALSE(isReadyWithin(other, kShort));
    }
    for (auto& other : waiting) EXPECT_TRUE(isReadyWithin(other, kLong));
}

TEST(XsharedMutexTest, AReaderNeverSeesHalfOfAChange) {
    XsharedMutex mutex;
    int first = 0;
    int second = 0;
    std::atomic<int> torn{0};
    inThreads(4, [&](int thread) {
        for (int i = 0; i < 5000; ++i) {
            if (thread < 2) {
                const std::lock_guard<XsharedMutex> guard(mutex);
                ++first;
                ++second;
            } else {
                const XsharedGuard guard(mutex);
                if (first != second) ++torn;
            }
        }
    });
    EXPECT_EQ(torn, 0);
    EXPECT_EQ(first, 10000);
}

// Readers that overlap leave no moment without one.
TEST(XsharedMutexTest, AWriterGetsItsTurnAmongReadersThatNeverStop) {
    XsharedMutex mutex;
    const auto read = [&] { const XsharedGuard guard(mutex); };
    std::future<void> writing;
    whileRepeating(4, read, [&] {
        writing = inThread([&] {
            for (int i = 0; i < 100; ++i) const std::lock_guard<XsharedMutex> guard(mutex);
        });
        EXPECT_TRUE(isReadyWithin(writing, kLong));
    });
}

TEST(XsharedMutexTest, AReaderGetsItsTurnAmongWritersThatNeverStop) {
    XsharedMutex mutex;
    const auto write = [&] { const std::lock_guard<XsharedMutex> guard(mutex); };
    std::future<void> reading;
    whileRepeating(3, write, [&] {
        reading = inThread([&] {
            for (int i = 0; i < 100; ++i) const XsharedGuard guard(mutex);
        });
        EXPECT_TRUE(isReadyWithin(reading, kLong));
    });
}
