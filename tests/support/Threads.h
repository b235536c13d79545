#ifndef TESTS_THREADS_H
#define TESTS_THREADS_H

#include <atomic>
#include <thread>
#include <vector>

// Runs work(0), work(1), ... at the same time, each in its own thread, and waits for them.
template <typename Work>
void inThreads(int count, Work work) {
    std::vector<std::thread> threads;
    for (int i = 0; i < count; ++i) threads.emplace_back([&work, i] { work(i); });
    for (std::thread& thread : threads) thread.join();
}

// Repeats `call` in this many other threads until work() returns.
template <typename Call, typename Work>
void whileRepeating(int count, Call call, Work work) {
    std::atomic<bool> done{false};
    std::thread others([&] {
        inThreads(count, [&](int) {
            while (!done) call();
        });
    });
    work();
    done = true;
    others.join();
}

#endif
