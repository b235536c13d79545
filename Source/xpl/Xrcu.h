#ifndef XPL_XRCU_H
#define XPL_XRCU_H

#include <atomic>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "xpl/Xattributes.h"

// Read-copy-update: many threads read a value without a lock while a writer occasionally publishes
// a changed copy. A published copy is never modified. For a small trivially copyable value use
// Xseqlock, which makes no copies on the heap.
template <typename Value>
class Xrcu {
 public:
    // Pins the current value for its lifetime.
    class Reader {
     public:
        explicit Reader(const Xrcu& of) : of_(of) {
            of_.readers_.fetch_add(1);  // before the value is read
            value_ = of_.current_.load();
        }
        ~Reader() { of_.readers_.fetch_sub(1); }
        Reader(const Reader&) = delete;
        Reader& operator=(const Reader&) = delete;

        // Null before the first change.
        const Value* get() const { return value_; }

     private:
        const Xrcu& of_;
        const Value* value_;
    };

    Xrcu() = default;
    Xrcu(const Xrcu&) = delete;
    Xrcu& operator=(const Xrcu&) = delete;

    // Takes no lock: at unload there are no readers, and at process exit a terminated thread may
    // have held the lock.
    ~Xrcu() { delete current_.exchange(nullptr); }

    // Calls change(copy) with a copy of the value (initially an empty one), then publishes it.
    template <typename Change>
    void change(Change change) {
        const std::lock_guard<std::mutex> guard(writers_);
        const Value* const now = current_.load();
        auto next = now == nullptr ? std::make_unique<Value>() : std::make_unique<Value>(*now);
        change(*next);
        replaced_.reserve(replaced_.size() + 1);
        if (const Value* const before = current_.exchange(next.release())) {
            replaced_.emplace_back(before);
        }
        releaseReplaced();
    }

 private:
    // A reader that begins after the replacement sees the new value, so old values can be freed as
    // soon as there is no reader. A writer tries for a moment; what it leaves, the next one frees.
    void releaseReplaced() XTS_REQUIRES(writers_) {
        constexpr int kTries = 1000;
        constexpr int kTriesUntilYield = 100;  // on a busy machine a yield takes milliseconds
        for (int i = 1; i <= kTries; ++i) {
            if (readers_.load() == 0) return replaced_.clear();
            if (i % kTriesUntilYield == 0) std::this_thread::yield();
        }
    }

    std::atomic<const Value*> current_{nullptr};
    mutable std::atomic<int> readers_{0};
    std::mutex writers_;

    // Possibly still being read.
    std::vector<std::unique_ptr<const Value>> replaced_ XTS_GUARDED_BY(writers_);
};

#endif
