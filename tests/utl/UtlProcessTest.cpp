#include "support/FatalBreak.h"
#include "support/LogCapture.h"
#include "support/LogLines.h"
#include "support/RegistrySandbox.h"
#include "support/TestHeaders.h"
#include "utl/UtlProcess.h"
#include "utl/UtlProcessCalls.h"
#include "xpl/Xtext.h"

// The install folder is read once per process, so each case runs in its own process. It prints the
// calls that were made, then the log, then the result.

namespace {

enum class Reach { Closed, WithoutModules, WithoutPath, Whole };

struct FakeProcess {
    std::uint32_t id;
    Reach reach;
    std::string path;
};

std::vector<FakeProcess> fakes;

void say(const char* call, std::uint32_t id) { std::printf("%s %u\n", call, id); }

const FakeProcess& fakeOf(void* process) { return *static_cast<const FakeProcess*>(process); }

bool enumerateFakes(std::vector<std::uint32_t>& ids) {
    for (const FakeProcess& fake : fakes) ids.push_back(fake.id);
    return true;
}

bool failToEnumerate(std::vector<std::uint32_t>&) { return false; }

void* openFake(std::uint32_t id) {
    say("open", id);
    for (FakeProcess& fake : fakes) {
        if (fake.id == id && fake.reach != Reach::Closed) return &fake;
    }
    return nullptr;
}

void closeFake(void* process) { say("close", fakeOf(process).id); }

bool hasFakeModules(void* process) { return fakeOf(process).reach != Reach::WithoutModules; }

bool fakePath(void* process, std::wstring& path) {
    if (fakeOf(process).reach == Reach::WithoutPath) return false;
    return xtextToWide(fakeOf(process).path, path) == XERR_SUCCESS;
}

void trimFake(void* process) { say("trim", fakeOf(process).id); }

std::int32_t failToRegister(const std::wstring& path) {
    std::printf("register %s\n", xtextToUtf8(path).c_str());
    return static_cast<std::int32_t>(0x80070057);
}

void useFakes(bool canEnumerate) {
    utlProcessCalls() = {canEnumerate ? enumerateFakes : failToEnumerate,
                         openFake,
                         closeFake,
                         hasFakeModules,
                         fakePath,
                         trimFake,
                         failToRegister};
}

}  // namespace

SUBPROCESS(trimsFakeProcesses) {
    RegistrySandbox registry;
    if (!arguments.empty()) registry.set("InstallDir", arguments[0]);
    fakes = {
        {4, Reach::Closed, "C:\\Apps\\Player\\QX-Service.exe"},
        {100, Reach::Whole, "C:\\Apps\\Player\\QX-Player.exe"},
        {104, Reach::Whole, "C:\\Windows\\explorer.exe"},
        {108, Reach::Whole, "c:\\apps\\player\\QX-Player.exe"},
        {112, Reach::WithoutModules, "C:\\Apps\\Player\\QX-Player.exe"},
        {116, Reach::WithoutPath, "C:\\Apps\\Player\\QX-Player.exe"},
        {120, Reach::Whole, "\\\\?\\C:\\Apps\\Player\\bin\\Ünïcode 日本.exe"},
        {124, Reach::Whole, "C:\\Apps\\Player"},
    };
    useFakes(/*canEnumerate=*/arguments.size() < 2);
    const LogCapture log;
    const XErr result = utlTrimMemoryAllProcs();
    for (const std::string& line : log.texts(XLOG_VERBOSE)) std::printf("%s\n", line.c_str());
    std::printf("%d\n", result);
    return 0;
}

SUBPROCESS(registersTheCrashHandler) {
    RegistrySandbox registry;
    if (!arguments.empty()) registry.set("InstallDir", arguments[0]);
    utlProcessCalls().registerCrashModule = failToRegister;
    std::printf("%d\n", utlRegisterCrashHandler());
    return 0;
}

TEST(UtlTrim, OnlyTheProductsProcessesAreTrimmedAndEveryHandleIsClosed) {
    EXPECT_EQ(subprocessOutput("trimsFakeProcesses", {"C:\\Apps\\Player\\"}),
              "open 4\n"
              "open 100\ntrim 100\nclose 100\n"
              "open 104\nclose 104\n"
              "open 108\nclose 108\n"
              "open 112\nclose 112\n"
              "open 116\nclose 116\n"
              "open 120\ntrim 120\nclose 120\n"
              "open 124\nclose 124\n" +
                  logged::memoryTrimmed("100", "C:\\Apps\\Player\\QX-Player.exe") + "\n" +
                  logged::memoryTrimmed("120", "\\\\?\\C:\\Apps\\Player\\bin\\Ünïcode 日本.exe") +
                  "\n0\n");
}

TEST(UtlTrim, TheInstallFolderIsFoundAnywhereInThePath) {
    const std::string text = subprocessOutput("trimsFakeProcesses", {"C:\\Apps\\Player"});
    EXPECT_NE(text.find(logged::memoryTrimmed("124", "C:\\Apps\\Player") + "\n"), std::string::npos)
        << text;
}

TEST(UtlTrim, AProcessWithoutANameIsCalledUnknown) {
    const std::string text = subprocessOutput("trimsFakeProcesses", {"known"});
    EXPECT_NE(text.find("close 124\n" + logged::memoryTrimmed("112", "<unknown>") + "\n" +
                        logged::memoryTrimmed("116", "<unknown>") + "\n0\n"),
              std::string::npos)
        << text;
}

TEST(UtlTrim, AFailedEnumerationIsLoggedAndNothingIsOpened) {
    EXPECT_EQ(subprocessOutput("trimsFakeProcesses", {"C:\\Apps\\Player\\", "not listed"}),
              "E UTL utlTrimMemoryAllProcs-> EnumProcesses: failed\n-1\n");
}

SUBPROCESS(trimsWithoutAnInstallFolder) {
    RegistrySandbox registry;
    useFakes(/*canEnumerate=*/true);
    return utlTrimMemoryAllProcs();
}

TEST(UtlTrim, AMissingInstallFolderIsFatal) {
    EXPECT_EQ(linesUntilBreak("trimsWithoutAnInstallFolder"),
              (Lines{logged::untagged(logged::installFolderUnknown()),
                     logged::fatalBreak("", "Source/utl/Utl")}))
        << "nothing is opened";
}

TEST(UtlCrashHandler, TheModuleOfTheInstallFolderIsRegistered) {
    EXPECT_EQ(subprocessOutput("registersTheCrashHandler", {"C:\\Apps\\日本\\"}),
              "register C:\\Apps\\日本\\QX-WerHandler.dll\n-2147024809\n");
}

TEST(UtlCrashHandler, NoSeparatorIsAdded) {
    EXPECT_EQ(subprocessOutput("registersTheCrashHandler", {"C:\\Apps\\Player"}),
              "register C:\\Apps\\PlayerQX-WerHandler.dll\n-2147024809\n");
}

TEST(UtlCrashHandler, AMissingInstallFolderIsFatal) {
    EXPECT_EQ(runSubprocess("registersTheCrashHandler").status, kFatalStatus);
}
