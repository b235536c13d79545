#include <gtest/gtest.h>

#include <cstdint>
#include <set>
#include <string>

#include "xpl/Xerr.h"

TEST(Xerr, NamesTheSpecialCodes) {
    EXPECT_EQ(xerrName(0), "XERR_SUCCESS");
    EXPECT_EQ(xerrName(-1), "XERR_FAILURE");
    EXPECT_EQ(xerrName(22), "XERR_INVAL");
    EXPECT_EQ(xerrName(7), "XERR_2BIG");
}

TEST(Xerr, CodesWithoutANameShowTheirNumber) {
    EXPECT_EQ(xerrName(41), "NOTDEFINED: 41");
    EXPECT_EQ(xerrName(58), "NOTDEFINED: 58");
    EXPECT_EQ(xerrName(134), "NOTDEFINED: 134");
    EXPECT_EQ(xerrName(1001), "NOTDEFINED: 1001");
    EXPECT_EQ(xerrName(1002), "NOTDEFINED: 1002");
    EXPECT_EQ(xerrName(100005), "NOTDEFINED: 100005");
    EXPECT_EQ(xerrName(-2), "NOTDEFINED: -2");
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

TEST(Xerr, WindowsErrorsWithoutAnEquivalentAreShifted) {
    EXPECT_EQ(xerrFromWindows(7), 100007);
    EXPECT_EQ(xerrFromWindows(32), 100032);
    EXPECT_EQ(xerrFromWindows(740), 100740);
    EXPECT_EQ(xerrFromWindows(16000), 116000);
    EXPECT_EQ(xerrFromWindows(16001), 116001);
    EXPECT_EQ(xerrFromWindows(0), 100000);
}

TEST(Xerr, ErrorsOutsideTheUsualRangeAreShiftedWithoutOverflow) {
    EXPECT_EQ(xerrFromWindows(-1), 99999);
    EXPECT_EQ(xerrFromWindows(INT32_MAX), static_cast<XErr>(0x7FFFFFFFu + 100000u));
}
