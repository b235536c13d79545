#include "support/Subprocess.h"
#include "support/TestHeaders.h"
#include "xpl/Xclock.h"

namespace {

constexpr std::int64_t kSecond = 1'000'000;
constexpr std::int64_t kMinute = 60 * kSecond;

std::string calendar(std::int64_t time) { return xclockFormat(time, "%Y-%m-%d %H:%M:%S"); }

std::string stamp(std::int64_t time, const std::string& suffix = "") {
    return xclockStamp(time, suffix.c_str()).data();
}

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
    EXPECT_EQ(stamp(time, "+0100"), "2024-03-07 14:05:09.042+0100");
    EXPECT_EQ(stamp(time + 957'000), "2024-03-07 14:05:09.999");
}

TEST(Xclock, ASuffixThatIsTooLongIsCut) {
    const std::string suffix(64, 'z');
    EXPECT_EQ(stamp(0, suffix), "1970-01-01 00:00:00.000" + std::string(40, 'z'));
    EXPECT_EQ(stamp(-kSecond, suffix).size(), 63u);
}

TEST(Xclock, AStampEqualsTheSystemsCalendar) {
    constexpr std::int64_t kYear3001 = 32'535'216'000;
    constexpr std::int64_t kStep = 86'400 * 17 + 7'919;  // every month, leap days, times of day
    for (std::int64_t time = 0; time < kYear3001; time += kStep) {
        ASSERT_EQ(stamp(time * kSecond), calendar(time * kSecond) + ".000");
    }
}

TEST(Xclock, AStampBefore1970IsTheRuntimesOwn) {
    EXPECT_EQ(stamp(-kSecond, "+0100"), calendar(-kSecond) + ".000+0100");
}

TEST(Xclock, ALeapDayHasItsStamp) {
    EXPECT_EQ(stamp(951'782'400 * kSecond), "2000-02-29 00:00:00.000");
    EXPECT_EQ(stamp(4'107'542'400 * kSecond), "2100-03-01 00:00:00.000");
}

// Prints how far UTC is from a local time in January and in July.
SUBPROCESS(printsDistanceToUtc) {
    for (const std::int64_t local : {1'704'110'400 * kSecond, 1'719'835'200 * kSecond}) {
        std::printf("%d ", static_cast<int>((local - xclockLocalToUtc(local)) / kMinute));
    }
    return 0;
}

TEST(Xclock, AZoneWithADaylightRuleIsInItAllYear) {
    ChildOptions zone;
    zone.environment = {{"TZ", "AAA0BBB"}};
    EXPECT_EQ(runSubprocess("printsDistanceToUtc", {}, zone).out, "60 60 ");
}

SUBPROCESS(printsMinutesFromUtc) {
    // The clock may go on between the two calls.
    std::printf("%d", static_cast<int>((xclockNow() - xclockUtc() + kSecond) / kMinute));
    return 0;
}

TEST(Xclock, NowIsTheTimeOfTheZone) {
    ChildOptions zone;
    zone.environment = {{"TZ", "AAA-05:30"}};  // POSIX counts from the zone to UTC
    EXPECT_EQ(runSubprocess("printsMinutesFromUtc", {}, zone).out, "330");
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

TEST(Xclock, ATimeAfterTheCalendarsEndIsEmpty) {
    constexpr std::int64_t kYear3002 = 32'566'752'000 * kSecond;
    EXPECT_EQ(xclockFormat(kYear3002, "%Y"), "");
}

TEST(Xclock, OutsideItsUsualYearsAStampEqualsTheSystemsCalendar) {
    for (const std::int64_t seconds : {-86'400LL, 32'535'216'000LL, 99'999'999'999LL}) {
        EXPECT_EQ(stamp(seconds * kSecond, "+0100"), calendar(seconds * kSecond) + ".000+0100");
    }
    EXPECT_EQ(stamp(32'535'216'000 * kSecond + 42'000), "3001-01-01 00:00:00.042");
}
