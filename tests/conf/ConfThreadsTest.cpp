// Every function at once from several threads, each with its own keys.
#include "ConfFixture.h"

namespace {

constexpr int kRounds = 60;

using ConfThreadsTest = ConfTest;

std::string counterOf(const std::string& instance) { return "vtr.instance." + instance + ".dpi"; }

// Counts in its own instance and reads each number back.
void count(ConfStore& store, const std::string& instance) {
    for (int number = 1; number <= kRounds; ++number) {
        confSetI32(store, counterOf(instance), number);
        EXPECT_EQ(confGetI32(store, counterOf(instance)), number);
        EXPECT_EQ(confGetInstances(store).count(instance), 1u);
        EXPECT_EQ(confSetCurrentInstance(store, instance), 0);
        EXPECT_EQ(confGetCurrentInstance(store).size(), instance.size());
    }
}

}  // namespace

TEST_F(ConfThreadsTest, EveryFunctionMayBeCalledFromAnyThread) {
    given("vtr.instance.A.dpi=\"0\"\nvtr.instance.B.dpi=\"0\"\n");
    const auto often = [](auto call) {
        return std::thread([call] {
            for (int round = 0; round < kRounds; ++round) call();
        });
    };
    std::thread threads[] = {
        std::thread([this] { count(store, "A"); }),
        std::thread([this] { count(store, "B"); }),
        often([this] { EXPECT_EQ(confCommit(store), 0); }),
        often([this] { EXPECT_EQ(confReload(store), 0); }),
        often([this] {
            EXPECT_EQ(confLibInit(store, path(), false), 0);
            confHasPendingChanges(store);
            EXPECT_EQ(confGetString(store, "vtr.log_levels"), "*:I");
        }),
    };
    for (std::thread& thread : threads) thread.join();
    ASSERT_EQ(confCommit(store), 0);
    ASSERT_EQ(confReload(store), 0);
    for (const char* instance : {"A", "B"}) {
        EXPECT_EQ(committed(counterOf(instance)), std::to_string(kRounds));
    }
}

TEST_F(ConfThreadsTest, TheCurrentInstanceIsReadWithoutTheLock) {
    given("vtr.instance.A.dpi=\"0\"\n");
    ASSERT_EQ(confSetCurrentInstance(store, "A"), 0);
    std::future<std::string> current;
    {
        const std::lock_guard<std::mutex> held(store.lock);
        current = std::async(std::launch::async, [this] { return confGetCurrentInstance(store); });
        EXPECT_EQ(current.wait_for(std::chrono::seconds(10)), std::future_status::ready);
    }
    EXPECT_EQ(current.get(), "A");
}
