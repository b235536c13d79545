#include "xpl/XtemporaryFile.h"

#include "support/LogCapture.h"
#include "support/LogLines.h"
#include "support/TestHeaders.h"

namespace {

constexpr XlogModule kModule{XlogTag::UTL, "f"};

class NotedFiles final : public XfileReplacer {
 public:
    XErr moveResult = XERR_SUCCESS;
    bool throwInRemove = false;
    Lines calls;

    XErr replace(const std::string& source, const std::string& destination) override {
        calls.push_back("replace " + source + " " + destination);
        return moveResult;
    }
    void remove(const std::string& path) override {
        calls.push_back("remove " + path);
        if (throwInRemove) throw std::bad_alloc();
    }
};

class XtemporaryFileTest : public ::testing::Test {
 protected:
    // Uses a temporary file "t" and destroys it. Expects these calls of the file functions.
    void expectCalls(const Lines& calls, const std::function<void(XtemporaryFile&)>& use) {
        {
            XtemporaryFile temporary(files, "t", kModule, "function");
            use(temporary);
        }
        EXPECT_EQ(files.calls, calls);
    }

    NotedFiles files;
};

}  // namespace

TEST_F(XtemporaryFileTest, AFileThatWasNeverCreatedIsNotDeleted) {
    expectCalls({}, [](XtemporaryFile&) {});
}

TEST_F(XtemporaryFileTest, AFileThatIsNotMovedIsDeleted) {
    expectCalls({"remove t"}, [](XtemporaryFile& temporary) {
        EXPECT_EQ(temporary.path(), "t");
        temporary.setExists(true);
    });
}

TEST_F(XtemporaryFileTest, AFileThatWasNotCreatedAfterAllIsNotDeleted) {
    expectCalls({}, [](XtemporaryFile& temporary) {
        temporary.setExists(true);
        temporary.setExists(false);
    });
}

TEST_F(XtemporaryFileTest, AFileThatWasMovedIsNotDeleted) {
    expectCalls({"replace t f"}, [](XtemporaryFile& temporary) {
        temporary.setExists(true);
        EXPECT_EQ(temporary.moveOnto("f"), XERR_SUCCESS);
    });
}

TEST_F(XtemporaryFileTest, AFileThatCannotBeMovedIsDeleted) {
    files.moveResult = XERR_ACCES;
    expectCalls({"replace t f", "remove t"}, [](XtemporaryFile& temporary) {
        temporary.setExists(true);
        EXPECT_EQ(temporary.moveOnto("f"), XERR_ACCES);
    });
}

TEST_F(XtemporaryFileTest, ADeletionThatThrowsIsLogged) {
    const LogCapture log;
    files.throwInRemove = true;
    expectCalls({"remove t"}, [](XtemporaryFile& temporary) { temporary.setExists(true); });
    EXPECT_EQ(log.texts(),
              Lines{logged::exceptionCaught("UTL", "function", std::bad_alloc().what())});
}
