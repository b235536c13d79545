#include "support/TestHeaders.h"
#include "xpl/Xseqlock.h"

namespace {

// So many that a writer often comes in between.
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
    std::atomic<bool> stop{false};
    std::atomic<std::uint64_t> mixed{0};
    std::atomic<std::uint64_t> backwards{0};
    std::vector<std::thread> readers;
    for (int i = 0; i < 3; ++i) {
        readers.emplace_back([&] {
            for (std::uintptr_t last = 0; !stop;) {
                const Words words = seqlock.get();
                if (!areEqual(words)) ++mixed;
                if (words.word[0] < last) ++backwards;
                last = words.word[0];
            }
        });
    }
    for (std::uintptr_t i = 1; i <= 40'000; ++i) seqlock.set(allOf(i));
    stop = true;
    for (std::thread& reader : readers) reader.join();
    EXPECT_EQ(mixed, 0u);
    EXPECT_EQ(backwards, 0u);
}

TEST(XseqlockTest, SeveralWritersLeaveOneWholeValue) {
    Xseqlock<Words> seqlock;
    std::vector<std::thread> writers;
    for (std::uintptr_t id = 1; id <= 4; ++id) {
        writers.emplace_back([&seqlock, id] {
            for (int i = 0; i < 5'000; ++i) seqlock.set(allOf(id));
        });
    }
    for (std::thread& writer : writers) writer.join();
    const Words last = seqlock.get();
    EXPECT_TRUE(areEqual(last));
    EXPECT_TRUE(last.word[0] >= 1 && last.word[0] <= 4);
}
