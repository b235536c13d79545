// State of the initialisation that no export shows. It is per process, so each test has its own.
#include "bridge/BridgeInit.h"

#include <bridge/bridge.h>

#include "conf/Conf.h"
#include "conf/ConfStore.h"
#include "support/LogCapture.h"
#include "support/LogLines.h"
#include "support/RegistrySandbox.h"
#include "support/Subprocess.h"
#include "support/TestHeaders.h"

namespace {

XErr initialise(const char* client) { return internal::bridgeApiInitEx(client, true, 0, "NUL"); }

// Prints the bridge's lines with their file and function.
void print(const LogCapture& log) {
    for (const LogCapture::Line& line : log.lines()) {
        if (line.tag != XlogTag::BRIDGE) continue;
        std::printf("%s %s: %s\n", line.file.c_str(), line.function.c_str(), line.message.c_str());
    }
}

}  // namespace

SUBPROCESS(initialisesThreeWays) {
    RegistrySandbox registry;
    registry.set("Version", "1.0");
    const LogCapture log;
    for (const char* client : {"Other", "Launcher", "Helper"}) {
        std::printf("%d\n", initialise(client));
    }
    print(log);
    return 0;
}

TEST(BridgeInitTest, EachLineCarriesTheModuleAndTheExportsName) {
    const std::string place = "Source/bridge/Bridge bridgeApiInitEx: ";
    EXPECT_EQ(subprocessOutput("initialisesThreeWays"),
              "22\n-1\n0\n" + place + logged::messageOf(logged::clientInvalid("Other")) + "\n" +
                  place + logged::messageOf(logged::versionMismatched("1.0")) + "\n" + place +
                  logged::messageOf(logged::initialising("Helper")) + "\n" + place +
                  logged::messageOf(logged::confLoading()) + "\n" + place +
                  logged::messageOf(logged::confLoaded()) + "\n");
}

SUBPROCESS(keepsTheClientsText) {
    RegistrySandbox registry;
    registry.set("Version", "1.0");
    const LogCapture log;
    char first[] = "Helper";
    char second[] = "Installer";
    if (internal::clientId() != nullptr || initialise("other") != XERR_INVAL) return 1;
    if (internal::clientId() != nullptr) return 2;
    if (initialise(first) != XERR_SUCCESS || internal::clientId() != first) return 3;
    if (initialise("helper") != XERR_INVAL || internal::clientId() != first) return 4;
    if (initialise("Launcher") != XERR_FAILURE || internal::clientId() != first) return 5;
    if (initialise(second) != XERR_SUCCESS || internal::clientId() != second) return 6;
    return 0;
}

TEST(BridgeInitTest, TheHostsOwnTextIsKeptFromTheLastInitialisationThatWasNotRefused) {
    EXPECT_EQ(subprocessOutput("keepsTheClientsText"), "");
}

SUBPROCESS(cannotMakeTheLock) {
    RegistrySandbox registry;
    confStore().fileLockName = "a\\b";  // in an object directory that does not exist
    const LogCapture log;
    std::printf("%d\n", initialise("Helper"));
    for (const std::string& line : log.texts(XLOG_ERROR)) std::printf("%s\n", line.c_str());
    std::printf("%s\n", log.lines().back().function.c_str());
    return 0;
}

TEST(BridgeInitTest, WithoutTheMachineWideLockItFailsWithTheLocksError) {
    const std::string text = subprocessOutput("cannotMakeTheLock");
    const std::string start = "-1\n" + logged::mutexNotMade("a\\b");
    EXPECT_EQ(text.substr(0, start.size()), start);
    const std::string end = "\n" + logged::confNotLoaded() + "\nbridgeApiInitEx\n";
    EXPECT_EQ(text.substr(std::min(text.size(), text.find('\n', start.size()))), end) << text;
}

TEST(BridgeInitTest, TheHeadersVersionIsTheSameAsTextAndInNumbers) {
    EXPECT_EQ(std::to_string(BRIDGE_VERSION_MAJOR) + "." + std::to_string(BRIDGE_VERSION_MINOR) +
                  "." + std::to_string(BRIDGE_VERSION_PATCH) + "." +
                  std::to_string(BRIDGE_VERSION_BUILD),
              BRIDGE_VERSION_TEXT);
}
