#include "support/TestHeaders.h"
#include "xpl/Xerr.h"

TEST(Xerr, NamesTheSpecialCodes) {
    EXPECT_EQ(xerrName(0), "XERR_SUCCESS");
    EXPECT_EQ(xerrName(-1), "XERR_FAILURE");
    EXPECT_EQ(xerrName(22), "XERR_INVAL");
    EXPECT_EQ(xerrName(7), "XERR_2BIG");
}

TEST(Xerr, CodesWithoutANameShowTheirNumber) {
    for (const XErr code : {41, 58, 134, 1001, 1002, 100005, -2}) {
        EXPECT_EQ(xerrName(code), "NOTDEFINED: " + std::to_string(code));
    }
}

TEST(Xerr, EveryCodeFrom0To133ButTwoHasItsOwnName) {
    std::set<std::string> names;
    for (XErr code = 0; code <= 133; ++code) {
        if (code == 41 || code == 58) continue;
        EXPECT_EQ(xerrName(code).rfind("XERR_", 0), 0u) << code;
        names.insert(xerrName(code));
    }
    EXPECT_EQ(names.size(), 132u);
}

TEST(Xerr, TheListOfCodesIsAscendingAndHasEachNameOnce) {
    const std::vector<XErr> codes = xerrCodes();
    ASSERT_EQ(codes.size(), 133u);
    EXPECT_EQ(codes.front(), XERR_FAILURE);
    EXPECT_EQ(codes.back(), XERR_HWPOISON);
    for (std::size_t i = 1; i < codes.size(); ++i) EXPECT_LT(codes[i - 1], codes[i]);
}

TEST(Xerr, AStatusListsTheWindowsErrorsThatBecomeIt) {
    using Errors = std::vector<std::int32_t>;
    EXPECT_EQ(xerrWindowsErrors(XERR_ACCES), (Errors{5, 19}));
    EXPECT_EQ(xerrWindowsErrors(XERR_ADDRINUSE), Errors{183});
    EXPECT_EQ(xerrWindowsErrors(XERR_SUCCESS), Errors{});
    EXPECT_EQ(xerrWindowsErrors(XERR_WINDOWS_BASE + 32), Errors{});
    std::size_t count = 0;
    for (const XErr code : xerrCodes()) {
        for (const std::int32_t error : xerrWindowsErrors(code)) {
            EXPECT_EQ(xerrFromWindows(error), code);
            ++count;
        }
    }
    EXPECT_EQ(count, 36u);
}

TEST(Xerr, OnlySharingAndLockViolationsMeanThatAFileIsHeld) {
    std::vector<std::int32_t> held;
    for (std::int32_t error = 0; error <= 2000; ++error) {
        if (xerrIsHeld(xerrFromWindows(error))) held.push_back(error);
    }
    EXPECT_EQ(held, (std::vector<std::int32_t>{32, 33}));
}

TEST(Xerr, WindowsErrorsWithoutAnEquivalentAreShifted) {
    for (const std::int32_t error : {0, 7, 32, 740, 16000, 16001}) {
        EXPECT_EQ(xerrFromWindows(error), 100000 + error);
    }
}

TEST(Xerr, ErrorsOutsideTheUsualRangeAreShiftedWithoutOverflow) {
    EXPECT_EQ(xerrFromWindows(-1), 99999);
    EXPECT_EQ(xerrFromWindows(INT32_MAX), static_cast<XErr>(0x7FFFFFFFu + 100000u));
}
