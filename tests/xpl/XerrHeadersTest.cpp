// The table of errors against the headers of Windows.
#include <gtest/gtest.h>

#include "support/WindowsForTests.h"
#include "xpl/Xerr.h"

TEST(Xerr, RowsCarryTheNumbersOfTheWindowsHeaders) {
    int rows = 0;
#define CHECK_ROW(number, name, code)              \
    EXPECT_EQ(name, static_cast<DWORD>(number));   \
    EXPECT_EQ(xerrFromWindows(name), XERR_##code); \
    ++rows;
    XERR_WINDOWS_ERRORS(CHECK_ROW)
#undef CHECK_ROW
    EXPECT_EQ(rows, 36);
}

TEST(Xerr, AnObjectThatExistsAlreadyIsAnAddressInUse) {
    EXPECT_EQ(xerrFromWindows(ERROR_ALREADY_EXISTS), 98);
}
