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

}  // namespace

TEST(XtemporaryFileTest, WhatWasNeverCreatedIsNotDeleted) {
    NotedFiles files;
    { const XtemporaryFile temporary(files, "t", kModule, "function"); }
    EXPECT_EQ(files.calls, Lines{});
}

TEST(XtemporaryFileTest, AFileThatIsNotMovedIsDeleted) {
    NotedFiles files;
    {
        XtemporaryFile temporary(files, "t", kModule, "function");
        EXPECT_EQ(temporary.path(), "t");
        temporary.setExists(true);
    }
    EXPECT_EQ(files.calls, Lines{"remove t"});
}

TEST(XtemporaryFileTest, AFileThatWasNotCreatedAfterAllIsNotDeleted) {
    NotedFiles files;
    {
        XtemporaryFile temporary(files, "t", kModule, "function");
        temporary.setExists(true);
        temporary.setExists(false);
    }
    EXPECT_EQ(files.calls, Lines{});
}

TEST(XtemporaryFileTest, AFileThatWasMovedIsNotDeleted) {
    NotedFiles files;
    {
        XtemporaryFile temporary(files, "t", kModule, "function");
        temporary.setExists(true);
        EXPECT_EQ(temporary.moveOnto("f"), XERR_SUCCESS);
    }
    EXPECT_EQ(files.calls, Lines{"replace t f"});
}

TEST(XtemporaryFileTest, AFileThatCannotBeMovedIsDeleted) {
    NotedFiles files;
    files.moveResult = XERR_ACCES;
    {
        XtemporaryFile temporary(files, "t", kModule, "function");
        temporary.setExists(true);
        EXPECT_EQ(temporary.moveOnto("f"), XERR_ACCES);
    }
    EXPECT_EQ(files.calls, (Lines{"replace t f", "remove t"}));
}

TEST(XtemporaryFileTest, ADeletionThatThrowsIsLogged) {
    const LogCapture log;
    NotedFiles files;
    files.throwInRemove = true;
    {
        XtemporaryFile temporary(files, "t", kModule, "function");
        temporary.setExists(true);
    }
    EXPECT_EQ(log.texts(),
              Lines{logged::exceptionCaught("UTL", "function", std::bad_alloc().what())});
}
