#include "support/TestHeaders.h"
#include "support/Threads.h"
#include "xpl/Xseqlock.h"

namespace {

// Enough for a writer to interrupt a read often.
constexpr std::size_t kWords = 512;

struct Words {
    std::uintptr_t word[kWords];
};

Words allOf(std::uintptr_t word) {
    Words words;
    for (std::uintptr_t& each : words.word) each = word;
    return words;
}

bool areEqual(const Words& words) {
    for (const std::uintptr_t each : words.word) {
        if (each != words.word[0]) return false;
    }
    return true;
}

}  // namespace

TEST(XseqlockTest, ItIsZeroBeforeItIsSet) {
    const Xseqlock<Words> seqlock;
    EXPECT_EQ(seqlock.get().word[0], 0u);
    EXPECT_TRUE(areEqual(seqlock.get()));
}

TEST(XseqlockTest, TheLastValueIsRead) {
    Xseqlock<Words> seqlock;
    seqlock.set(allOf(1));
    seqlock.set(allOf(2));
    EXPECT_EQ(seqlock.get().word[kWords - 1], 2u);
    EXPECT_TRUE(areEqual(seqlock.get()));
}

TEST(XseqlockTest, ReadersNeverSeeHalfOfTwoValues) {
    Xseqlock<Words> seqlock;
    std::atomic<int> mixed{0};
    std::atomic<int> backwards{0};
    const auto read = [&] {
        thread_local std::uintptr_t last = 0;
        const Words words = seqlock.get();
        if (!areEqual(words)) ++mixed;
        if (words.word[0] < std::exchange(last, words.word[0])) ++backwards;
    };
    whileRepeating(3, read, [&] {
        for (std::uintptr_t i = 1; i <= 40'000; ++i) seqlock.set(allOf(i));
    });
    EXPECT_EQ(mixed, 0);
    EXPECT_EQ(backwards, 0);
}

TEST(XseqlockTest, SeveralWritersLeaveOneWholeValue) {
    Xseqlock<Words> seqlock;
    inThreads(4, [&seqlock](int id) {
        for (int i = 0; i < 5'000; ++i) seqlock.set(allOf(static_cast<std::uintptr_t>(id) + 1));
    });
    const Words last = seqlock.get();
    EXPECT_TRUE(areEqual(last));
    EXPECT_TRUE(last.word[0] >= 1 && last.word[0] <= 4);
}
