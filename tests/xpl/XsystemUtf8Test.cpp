// The locale and the code page of Windows' C runtime.
#include <clocale>

#include "support/TestHeaders.h"
#include "xpl/Xsystem.h"

// Last: its _M constants clash with names inside the C++ library.
#include <mbctype.h>

TEST(XsystemUtf8, TheEncodingOfNarrowTextsIsUtf8) {
    xsystemUseUtf8();
    EXPECT_NE(std::string(std::setlocale(LC_ALL, nullptr)).find("65001"), std::string::npos);
    EXPECT_EQ(_getmbcp(), 65001);
}
