#ifndef XPL_XSEQLOCK_H
#define XPL_XSEQLOCK_H

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <mutex>
#include <thread>
#include <type_traits>

// A seqlock: a small value that is written rarely and read often. A read takes no lock and never
// returns a torn value.
template <typename Value>
class Xseqlock {
    static_assert(std::is_trivially_copyable_v<Value>);
    static_assert(sizeof(Value) % sizeof(std::uintptr_t) == 0);
    static constexpr std::size_t kWords = sizeof(Value) / sizeof(std::uintptr_t);

 public:
    void set(const Value& value) {
        std::array<std::uintptr_t, kWords> words;
        std::memcpy(words.data(), &value, sizeof value);
        const std::lock_guard<std::mutex> guard(writers_);
        const std::uint32_t before = version_.load(std::memory_order_relaxed);
        version_.store(before + 1, std::memory_order_relaxed);  // odd: write in progress
        std::atomic_thread_fence(std::memory_order_release);
        for (std::size_t i = 0; i < kWords; ++i) {
            words_[i].store(words[i], std::memory_order_relaxed);
        }
        version_.store(before + 2, std::memory_order_release);
    }

    Value get() const {
        std::array<std::uintptr_t, kWords> words;
        while (!copyTo(words)) std::this_thread::yield();
        Value value;
        std::memcpy(&value, words.data(), sizeof value);
        return value;
    }

 private:
    // Returns false when a writer interfered.
    bool copyTo(std::array<std::uintptr_t, kWords>& words) const {
        const std::uint32_t before = version_.load(std::memory_order_acquire);
        for (std::size_t i = 0; i < kWords; ++i) {
            words[i] = words_[i].load(std::memory_order_relaxed);
        }
        std::atomic_thread_fence(std::memory_order_acquire);
        return before % 2 == 0 && version_.load(std::memory_order_relaxed) == before;
    }

    std::mutex writers_;
    std::atomic<std::uint32_t> version_{0};
    std::array<std::atomic<std::uintptr_t>, kWords> words_{};
};

#endif
