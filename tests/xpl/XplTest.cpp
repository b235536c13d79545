#include "support/LogCapture.h"
#include "support/TempFolder.h"
#include "support/TestHeaders.h"
#include "xpl/Xpl.h"

namespace {

class XplTest : public ::testing::Test {
 protected:
    std::string log() const { return folder / "Player.log"; }

    TempFolder folder;
};

}  // namespace

TEST_F(XplTest, AfterTheStartWideTextsAreLoggedAsUtf8) {
    ASSERT_EQ(xplLibInit(nullptr, log()), 0);
    constexpr XlogModule module{XlogTag::XSTR, "test"};
    XLOG_E(module, "%ls", L"日本");
    EXPECT_EQ(logMessages(folder.read("Player.log")), Lines{"E XSTR  日本"});
}

TEST_F(XplTest, ALogAtTheLimitIsRotated) {
    folder.write("Player.log", std::string(XPL_LOG_ROTATE_SIZE, 'a'));
    folder.write("Player.log.1", "one");
    folder.write("Player.log.2", "two");
    ASSERT_EQ(xplLibInit(nullptr, log()), 0);
    EXPECT_EQ(folder.list(), (Lines{"Player.log", "Player.log.1", "Player.log.2"}));
    EXPECT_EQ(folder.read("Player.log"), "");
    EXPECT_EQ(folder.read("Player.log.1").size(), std::size_t{10'485'760});
    EXPECT_EQ(folder.read("Player.log.2"), "one") << "the oldest is replaced";
}

TEST_F(XplTest, ALogBelowTheLimitIsNotRotated) {
    folder.write("Player.log", std::string(XPL_LOG_ROTATE_SIZE - 1, 'a'));
    ASSERT_EQ(xplLibInit(nullptr, log()), 0);
    EXPECT_EQ(folder.list(), Lines{"Player.log"});
    EXPECT_EQ(folder.read("Player.log").size(), std::size_t{10'485'759});
}

TEST_F(XplTest, TheFirstRotationHasNoOlderLog) {
    folder.write("Player.log", std::string(XPL_LOG_ROTATE_SIZE + 5, 'a'));
    ASSERT_EQ(xplLibInit(nullptr, log()), 0);
    EXPECT_EQ(folder.list(), (Lines{"Player.log", "Player.log.1"}));
}

TEST_F(XplTest, ARotationThatFailsDoesNotStopTheStart) {
    folder.write("Player.log", std::string(XPL_LOG_ROTATE_SIZE, 'a'));
    folder.write("Player.log.1\\inside", "x");
    folder.makeFolder("Player.log.2");
    EXPECT_EQ(xplLibInit(nullptr, log()), 0);
    EXPECT_EQ(folder.read("Player.log").size(), std::size_t{XPL_LOG_ROTATE_SIZE});
}
