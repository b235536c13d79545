// A plain and an elevated process share pipe, mutex and file, in both orders; and the user's
// answers to a prompt.
#include <gtest/gtest.h>

#include <string>

#include "ServedName.h"
#include "support/LogCapture.h"
#include "support/Platform.h"
#include "support/Subprocess.h"
#include "support/TempFolder.h"
#include "support/WindowsForTests.h"
#include "xpl/XmutexNamed.h"
#include "xpl/Xproc.h"

namespace {

constexpr int kDeclined = 101223;
constexpr int kPolls = 2400;  // of 50 ms: the user needs time to answer

// Waits for a file of the other process and returns its content.
std::string awaited(const TempFolder& folder, const std::string& name) {
    for (int i = 0; i < kPolls && !folder.has(name); ++i) sleepMs(50);
    sleepMs(50);  // until it is completely written
    return folder.has(name) ? folder.read(name) : "nothing came";
}

std::string errorText(const char* what, DWORD error) {
    return std::string(what) + " " + std::to_string(error) + "\n";
}

// Opens a server's pipe, mutex and file, and returns the Windows errors as lines.
std::string use(const std::string& name, const std::string& folder) {
    const HANDLE pipe = ::CreateFileW(wideForTests("\\\\.\\pipe\\" + name).c_str(),
                                      GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0,
                                      /*hTemplateFile=*/nullptr);
    std::string text =
        errorText("pipe", pipe == INVALID_HANDLE_VALUE ? ::GetLastError() : ERROR_SUCCESS);
    if (pipe != INVALID_HANDLE_VALUE) ::CloseHandle(pipe);
    XmutexNamed mutex;
    text += "mutex " + std::to_string(mutex.init("Global\\" + name)) + "\n";
    const HANDLE file = ::CreateFileW(wideForTests(folder + "\\data").c_str(), GENERIC_WRITE, 0,
                                      nullptr, OPEN_EXISTING, 0, /*hTemplateFile=*/nullptr);
    text += errorText("file", file == INVALID_HANDLE_VALUE ? ::GetLastError() : ERROR_SUCCESS);
    if (file != INVALID_HANDLE_VALUE) ::CloseHandle(file);
    return text;
}

constexpr const char* kAllWorks = "pipe 0\nmutex 0\nfile 0\n";

// The pipe, the mutex and the file of the first process.
class Made {
 public:
    explicit Made(const std::string& folder) {
        EXPECT_EQ(mutex_.init("Global\\" + server_.name()), 0);
        writeBytes(folder + "\\data", "x");
    }
    const std::string& name() const { return server_.name(); }

 private:
    const LogCapture log_;
    ServedName server_;
    XmutexNamed mutex_;
};

int startElevated(const std::string& subprocess, const TempFolder& folder,
                  const std::string& name) {
    return xprocCreate_elevated_basic(
        nullptr, {ownProgram(), "--subprocess", subprocess, folder.path(), name});
}

}  // namespace

SUBPROCESS(usesAndReports) {
    writeBytes(arguments[0] + "\\result", use(arguments[1], arguments[0]));
    return 0;
}

SUBPROCESS(createsAndWaits) {
    const Made made(arguments[0]);
    writeBytes(arguments[0] + "\\name", made.name());
    for (int i = 0; i < kPolls; ++i) {
        const std::wstring done = wideForTests(arguments[0] + "\\done");
        if (::GetFileAttributesW(done.c_str()) != INVALID_FILE_ATTRIBUTES) return 0;
        sleepMs(50);
    }
    return 1;
}

TEST(ElevationTest, AnElevatedProcessOpensTheObjectsOfAPlainOne) {
    const TempFolder folder;
    const Made made(folder.path());
    ASSERT_EQ(use(made.name(), folder.path()), kAllWorks) << "from here";
    ASSERT_EQ(startElevated("usesAndReports", folder, made.name()), 0);
    EXPECT_EQ(awaited(folder, "result"), kAllWorks);
}

TEST(ElevationTest, APlainProcessOpensTheObjectsOfAnElevatedOne) {
    const TempFolder folder;
    ASSERT_EQ(startElevated("createsAndWaits", folder, "-"), 0);
    const std::string name = awaited(folder, "name");
    EXPECT_EQ(use(name, folder.path()), kAllWorks);
    folder.write("done", "");
}

TEST(ElevationTest, ADeclinedPromptIsReported) {
    const LogCapture log;
    const TempFolder folder;
    EXPECT_EQ(startElevated("usesAndReports", folder, "none"), kDeclined);
}
