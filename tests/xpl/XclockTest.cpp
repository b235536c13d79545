#include "support/Subprocess.h"
#include "support/TestHeaders.h"
#include "xpl/Xclock.h"

namespace {

constexpr std::int64_t kSecond = 1'000'000;
constexpr std::int64_t kMinute = 60 * kSecond;

}  // namespace

TEST(Xclock, TheSuffixIsTheDifferenceOfLocalTimeToUtc) {
    const std::int64_t utc = 1'700'000'000 * kSecond;
    EXPECT_EQ(xclockZoneSuffix(utc + 60 * kMinute, utc), "+0100");
    EXPECT_EQ(xclockZoneSuffix(utc + 330 * kMinute, utc), "+0530");
    EXPECT_EQ(xclockZoneSuffix(utc - 300 * kMinute, utc), "-0500");
    EXPECT_EQ(xclockZoneSuffix(utc + 14 * 60 * kMinute, utc), "+1400");
}

TEST(Xclock, AZoneAtUtcCountsAsNegative) { EXPECT_EQ(xclockZoneSuffix(0, 0), "-0000"); }

TEST(Xclock, AStampHasMillisecondsAndTheSuffix) {
    const std::int64_t time = 1'709'820'309 * kSecond + 42'000;
    EXPECT_STREQ(xclockStamp(time, "+0100").data(), "2024-03-07 14:05:09.042+0100");
    EXPECT_STREQ(xclockStamp(time + 957'000, "").data(), "2024-03-07 14:05:09.999");
}

TEST(Xclock, ASuffixThatIsTooLongIsCut) {
    const std::string suffix(64, 'z');
    EXPECT_EQ(std::string(xclockStamp(0, suffix.c_str()).data()),
              "1970-01-01 00:00:00.000" + std::string(40, 'z'));
    EXPECT_EQ(std::string(xclockStamp(-kSecond, suffix.c_str()).data()).size(), 63u);
}

TEST(Xclock, AStampIsWhatTheCalendarOfTheSystemSays) {
    constexpr std::int64_t kYear3001 = 32'535'216'000;
    constexpr std::int64_t kStep = 86'400 * 17 + 7'919;  // every month, leap days, times of day
    for (std::int64_t time = 0; time < kYear3001; time += kStep) {
        const std::string expected = xclockFormat(time * kSecond, "%Y-%m-%d %H:%M:%S") + ".000";
        ASSERT_EQ(xclockStamp(time * kSecond, "").data(), expected);
    }
}

TEST(Xclock, AStampBefore1970IsTheRuntimesOwn) {
    EXPECT_EQ(std::string(xclockStamp(-kSecond, "+0100").data()),
              xclockFormat(-kSecond, "%Y-%m-%d %H:%M:%S") + ".000+0100");
}

TEST(Xclock, ALeapDayHasItsStamp) {
    EXPECT_STREQ(xclockStamp(951'782'400 * kSecond, "").data(), "2000-02-29 00:00:00.000");
    EXPECT_STREQ(xclockStamp(4'107'542'400 * kSecond, "").data(), "2100-03-01 00:00:00.000");
}

// Prints how far UTC is from a local time in January and in July.
SUBPROCESS(printsDistanceToUtc) {
    for (const std::int64_t local : {1'704'110'400 * kSecond, 1'719'835'200 * kSecond}) {
        std::printf("%d ", static_cast<int>((local - xclockLocalToUtc(local)) / kMinute));
    }
    return 0;
}

TEST(Xclock, AZoneWithADaylightRuleIsTakenToBeInItAllYear) {
    ChildOptions zone;
    zone.environment = {{"TZ", "AAA0BBB"}};
    EXPECT_EQ(runSubprocess("printsDistanceToUtc", {}, zone).out, "60 60 ");
}

TEST(Xclock, NowHasTheResolutionOfAMillisecond) {
    const std::int64_t now = xclockNow();
    EXPECT_EQ(now % 1000, 0);
    const auto utc = std::chrono::duration_cast<std::chrono::microseconds>(
                         std::chrono::system_clock::now().time_since_epoch())
                         .count();
    EXPECT_LE(std::abs(now - utc), 15 * 60 * kMinute) << "local time is within 15 h of UTC";
}

TEST(Xclock, UtcKeepsTheFractionOfASecond) {
    const std::int64_t local = 1'709'820'309 * kSecond + 42'000;
    const std::int64_t utc = xclockLocalToUtc(local);
    EXPECT_EQ((utc % kSecond), 42'000);
    EXPECT_EQ((local - utc) % (15 * kMinute), 0) << "zones differ by whole quarters of an hour";
}

TEST(Xclock, ATimeThatNoCalendarHasIsNoText) {
    constexpr std::int64_t kYear3002 = 32'566'752'000 * kSecond;
    EXPECT_EQ(xclockFormat(kYear3002, "%Y"), "");
}

TEST(Xclock, OutsideItsUsualYearsAStampHasWhatTheSystemsCalendarKnows) {
    for (const std::int64_t seconds : {-86'400LL, 32'535'216'000LL, 99'999'999'999LL}) {
        const std::int64_t time = seconds * kSecond;
        const std::string date = xclockFormat(time, "%Y-%m-%d %H:%M:%S");
        EXPECT_EQ(xclockStamp(time, "+0100").data(), date + ".000+0100");
    }
    EXPECT_STREQ(xclockStamp(32'535'216'000 * kSecond + 42'000, "").data(),
                 "3001-01-01 00:00:00.042");
}
