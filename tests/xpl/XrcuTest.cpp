#include "support/TestHeaders.h"
#include "support/Threads.h"
#include "xpl/Xrcu.h"

namespace {

using Texts = std::vector<std::string>;

// Counts its objects.
struct Counted {
    Counted() { ++alive; }
    Counted(const Counted& other) : number(other.number) { ++alive; }
    Counted& operator=(const Counted&) = delete;
    ~Counted() { --alive; }

    int number = 0;
    static std::atomic<int> alive;
};

std::atomic<int> Counted::alive{0};

bool areEqual(const Texts& texts) {
    for (const std::string& text : texts) {
        if (text != texts.front()) return false;
    }
    return true;
}

}  // namespace

TEST(XrcuTest, ItIsEmptyBeforeTheFirstChange) {
    const Xrcu<std::string> value;
    EXPECT_EQ(Xrcu<std::string>::Reader(value).get(), nullptr);
}

TEST(XrcuTest, AChangeBeginsWithTheLastValue) {
    Xrcu<std::string> value;
    value.change([](std::string& next) { next += "a"; });
    value.change([](std::string& next) { next += "b"; });
    EXPECT_EQ(*Xrcu<std::string>::Reader(value).get(), "ab");
}

TEST(XrcuTest, AReaderKeepsItsValueUntilItEnds) {
    {
        Xrcu<Counted> value;
        value.change([](Counted& next) { next.number = 1; });
        EXPECT_EQ(Counted::alive, 1);
        {
            const Xrcu<Counted>::Reader reader(value);
            value.change([](Counted& next) { next.number = 2; });
            EXPECT_EQ(reader.get()->number, 1);
            EXPECT_EQ(Xrcu<Counted>::Reader(value).get()->number, 2);
            EXPECT_EQ(Counted::alive, 2) << "the reader's and the new one";
        }
        value.change([](Counted& next) { next.number = 3; });
        EXPECT_EQ(Counted::alive, 1);
    }
    EXPECT_EQ(Counted::alive, 0);
}

TEST(XrcuTest, AChangeThatThrowsChangesNothing) {
    Xrcu<std::string> value;
    value.change([](std::string& next) { next = "before"; });
    const auto fails = [](std::string& next) {
        next = "half";
        throw 1;
    };
    EXPECT_THROW(value.change(fails), int);
    EXPECT_EQ(*Xrcu<std::string>::Reader(value).get(), "before");
    value.change([](std::string& next) { next += ", after"; });
    EXPECT_EQ(*Xrcu<std::string>::Reader(value).get(), "before, after");
}

TEST(XrcuTest, ReadersNeverSeeHalfOfTwoValues) {
    Xrcu<Texts> value;
    value.change([](Texts& next) { next.assign(8, "0"); });
    std::atomic<int> torn{0};
    const auto read = [&] {
        const Xrcu<Texts>::Reader reader(value);
        if (!areEqual(*reader.get())) ++torn;
    };
    whileRepeating(3, read, [&value] {
        for (int i = 1; i <= 300; ++i) {
            const std::string text = std::to_string(i) + " is more than fits inline";
            value.change([&text](Texts& next) { next.assign(8, text); });
        }
    });
    EXPECT_EQ(torn, 0);
}

TEST(XrcuTest, ChangesOfSeveralWritersAllCount) {
    Xrcu<int> value;
    inThreads(3, [&value](int) {
        for (int round = 0; round < 500; ++round) value.change([](int& next) { ++next; });
    });
    EXPECT_EQ(*Xrcu<int>::Reader(value).get(), 1500);
}
