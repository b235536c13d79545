// From packets to the host's functions, with the lines that the log gets.
#include "bridge/BridgeDec.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <stdexcept>
#include <string>

#include "GuardedBytes.h"
#include "HostCalls.h"
#include "conf/Conf.h"
#include "support/EventPackets.h"
#include "support/LogCapture.h"
#include "support/LogLines.h"
#include "support/MalformedPackets.h"
#include "support/Subprocess.h"
#include "support/TempFolder.h"

namespace {

class BridgeDecTest : public ::testing::Test {
 protected:
    BridgeDecTest() {
        folder.write("vantrel.conf", "vtr.instance.Nougat64.dpi=\"240\"\n");
        EXPECT_EQ(confLibInit(confStore(), folder / "vantrel.conf", false), 0);
        bridgeSetCallbacks(writingHost());
        hostCalls.clear();
        log.clear();
    }

    // Decodes bytes behind which there is nothing.
    static bool decode(const std::string& packet) {
        const GuardedBytes bytes(packet);
        return bridgeDecode(nullptr, bytes.data(), static_cast<std::int32_t>(packet.size()),
                            nullptr, 0);
    }

    // The bridge's own lines, from debug level up.
    Lines bridgeLines() const {
        Lines lines;
        for (const std::string& line : log.texts(XLOG_DEBUG)) {
            if (line.find(" BRIDGE ") != std::string::npos) lines.push_back(line);
        }
        return lines;
    }

    TempFolder folder;
    LogCapture log;
};

// What "%p" makes of a place in a packet.
std::string address(const std::string& packet, std::size_t offset) {
    char text[32];
    std::snprintf(text, sizeof text, "%p", static_cast<const void*>(packet.data() + offset));
    return text;
}

// "onAppDisplayed" is the slot of "bridgeOnAppDisplayed".
std::string callbackOf(const KnownEvent& event) {
    std::string name = event.slot;
    name[0] = static_cast<char>(name[0] - 'a' + 'A');
    return "bridge" + name;
}

// The example's fields as the line of the call shows them.
std::string rawFields(const KnownEvent& event, const std::string& packet) {
    std::string all;
    std::size_t at = 12;
    for (const KnownField& field : event.fields) {
        const std::size_t size = field.example.size() + 1;
        if (!all.empty()) all += ", ";
        all += field.type == 't'   ? address(packet, at + 4) + "(" + std::to_string(size) + ")"
               : field.type == 'd' ? std::to_string(std::stod(field.example))
                                   : field.example;
        at += field.type == 't' ? 4 + size : field.type == 'd' ? 8 : 4;
    }
    return all;
}

bool decodeInPlace(const std::string& packet) {
    return bridgeDecode(nullptr, reinterpret_cast<const std::uint8_t*>(packet.data()),
                        static_cast<std::int32_t>(packet.size()), nullptr, 0);
}

}  // namespace

TEST_F(BridgeDecTest, AnInstalledAppReachesSlot1) {
    const std::string packet =
        appInstalledPacket("N", "com.a", "Main", "Größe 大", -7, "1.2", "C:\\i.png", 200);
    ASSERT_TRUE(decodeInPlace(packet));
    EXPECT_EQ(hostCalls, Lines{"onAppInstalled(N|com.a|Main|Größe 大|-7|1.2|C:\\i.png|1)"});
    const auto field = [&](std::size_t offset, int count) {
        return address(packet, offset) + "(" + std::to_string(count) + ")";
    };
    EXPECT_EQ(
        bridgeLines(),
        (Lines{"D BRIDGE bridgeOnAppInstalled (" + field(16, 2) + ", " + field(22, 6) + ", " +
                   field(32, 5) + ", " + field(41, 12) + ", -7, " + field(61, 4) + ", " +
                   field(69, 9) + ", 200)\n",
               "I BRIDGE bridgeOnAppInstalledClbk called: instance N, package com.a, activity "
               "Main, appLabel Größe 大, versionCode -7, versionName 1.2, iconFilePath "
               "C:\\i.png, isUpdate 1",
               "D BRIDGE bridgeOnAppInstalled returning\n"}));
}

TEST_F(BridgeDecTest, AnAppThatWasNotThereBeforeIsNoUpdate) {
    ASSERT_TRUE(decode(appInstalledPacket("", "", "", "", 0, "", "", 0)));
    EXPECT_EQ(hostCalls, Lines{"onAppInstalled(||||0|||0)"});
}

TEST_F(BridgeDecTest, AnUninstalledAppReachesSlot2) {
    const std::string packet = appUninstalledPacket("N", "com.a");
    ASSERT_TRUE(decodeInPlace(packet));
    EXPECT_EQ(hostCalls, Lines{"onAppUninstalled(N|com.a)"});
    EXPECT_EQ(bridgeLines(),
              (Lines{"D BRIDGE bridgeOnAppUninstalled (" + address(packet, 16) + "(2), " +
                         address(packet, 22) + "(6))\n",
                     "I BRIDGE bridgeOnAppUninstalledClbk called: instance N, package com.a",
                     "D BRIDGE bridgeOnAppUninstalled returning\n"}));
}

TEST_F(BridgeDecTest, AFinishedApkReachesSlot3) {
    const std::string packet = apkInstallCompletedPacket("N", -2, "C:\\a.apk");
    ASSERT_TRUE(decodeInPlace(packet));
    EXPECT_EQ(hostCalls, Lines{"onApkInstallCompleted(N|-2|C:\\a.apk)"});
    EXPECT_EQ(bridgeLines(),
              (Lines{"D BRIDGE bridgeOnApkInstallCompleted (" + address(packet, 16) + "(2), -2, " +
                         address(packet, 26) + "(9))\n",
                     "I BRIDGE bridgeOnApkInstallCompletedClbk called: instance N, status -2, "
                     "apkFilePath C:\\a.apk",
                     "D BRIDGE bridgeOnApkInstallCompleted returning\n"}));
}

TEST_F(BridgeDecTest, AnInstanceListOfEightBytesIsEnough) {
    ASSERT_TRUE(decode(instanceListUpdatedPacket().substr(0, 8)));
    EXPECT_EQ(hostCalls, Lines{"onInstanceListUpdated()"});
    EXPECT_EQ(bridgeLines(), (Lines{"D BRIDGE bridgeOnInstanceListUpdated ()\n",
                                    "I BRIDGE bridgeOnInstanceListUpdatedClbk called:",
                                    "D BRIDGE bridgeOnInstanceListUpdated returning\n"}));
}

TEST_F(BridgeDecTest, ProgressReachesSlot5Alone) {
    const std::string packet = installImageProgressPacket("Nougat32", 1, 62.5);
    ASSERT_TRUE(decodeInPlace(packet));
    EXPECT_EQ(hostCalls, Lines{"installImageProgress(Nougat32|1|62.500000)"});
    EXPECT_EQ(
        bridgeLines(),
        (Lines{
            "D BRIDGE bridgeInstallImageProgress (" + address(packet, 16) + "(9), 1, 62.500000)\n",
            "I BRIDGE bridgeInstallImageProgressClbk called: imageName Nougat32, status 1, "
            "progress 62.500000",
            "D BRIDGE bridgeInstallImageProgress returning\n"}));
}

TEST_F(BridgeDecTest, ProgressWithStatus2AnnouncesTheInstanceListFirst) {
    ASSERT_TRUE(decode(installImageProgressPacket("Nougat32", 2, 100)));
    EXPECT_EQ(hostCalls,
              (Lines{"onInstanceListUpdated()", "installImageProgress(Nougat32|2|100.000000)"}));
    Lines lines = bridgeLines();
    lines.erase(lines.begin());
    EXPECT_EQ(lines, (Lines{"I BRIDGE bridgeInstallImageProgressClbk called: imageName Nougat32, "
                            "status 2, progress 100.000000",
                            "I BRIDGE bridgeOnInstanceListUpdatedClbk called:",
                            "D BRIDGE bridgeInstallImageProgress returning\n"}));
}

TEST_F(BridgeDecTest, ACreatedInstanceComesWithItsStatusFirst) {
    const std::string packet = createInstanceCompletedPacket(3, "Nougat64_1");
    ASSERT_TRUE(decodeInPlace(packet));
    EXPECT_EQ(hostCalls, Lines{"onCreateInstanceCompleted(3|Nougat64_1)"});
    EXPECT_EQ(bridgeLines(), (Lines{"D BRIDGE bridgeOnCreateInstanceCompleted (3, " +
                                        address(packet, 20) + "(11))\n",
                                    logged::instanceCreated("3", "Nougat64_1"),
                                    "D BRIDGE bridgeOnCreateInstanceCompleted returning\n"}));
}

TEST_F(BridgeDecTest, AChangedConfigurationReachesSlot7) {
    const std::string packet = instanceConfigurationChangedPacket("N");
    ASSERT_TRUE(decodeInPlace(packet));
    EXPECT_EQ(hostCalls, Lines{"onInstanceConfigurationChanged(N)"});
    EXPECT_EQ(
        bridgeLines(),
        (Lines{"D BRIDGE bridgeOnInstanceConfigurationChanged (" + address(packet, 16) + "(2))\n",
               "I BRIDGE bridgeOnInstanceConfigurationChangedClbk called: instance N",
               "D BRIDGE bridgeOnInstanceConfigurationChanged returning\n"}));
}

TEST_F(BridgeDecTest, ADisplayedAppReachesSlot8) {
    const std::string packet = appDisplayedPacket("N", "com.a");
    ASSERT_TRUE(decodeInPlace(packet));
    EXPECT_EQ(hostCalls, Lines{"onAppDisplayed(N|com.a)"});
    EXPECT_EQ(bridgeLines(),
              (Lines{"D BRIDGE bridgeOnAppDisplayed (" + address(packet, 16) + "(2), " +
                         address(packet, 22) + "(6))\n",
                     "I BRIDGE bridgeOnAppDisplayedClbk called: instance N, package com.a",
                     "D BRIDGE bridgeOnAppDisplayed returning\n"}));
}

TEST_F(BridgeDecTest, AnAccountListReachesSlot9) {
    const std::string packet = accountListUpdatedPacket("N", "a@b.c", 1);
    ASSERT_TRUE(decodeInPlace(packet));
    EXPECT_EQ(hostCalls, Lines{"onAccountListUpdated(N|a@b.c|1)"});
    EXPECT_EQ(bridgeLines(),
              (Lines{"D BRIDGE bridgeOnAccountListUpdated (" + address(packet, 16) + "(2), " +
                         address(packet, 22) + "(6), 1)\n",
                     "I BRIDGE bridgeOnAccountListUpdatedClbk called: instance N, emailId a@b.c, "
                     "action = 1",
                     "D BRIDGE bridgeOnAccountListUpdated returning\n"}));
}

// What the lines of an event are but for its special cases, which the tests above have.
TEST_F(BridgeDecTest, EachEventReachesItsSlotBetweenTheLinesOfItsCall) {
    for (const KnownEvent& event : knownEvents()) {
        hostCalls.clear();
        log.clear();
        const std::string packet = eventPacket(event, exampleOf(event));
        ASSERT_TRUE(decodeInPlace(packet));
        EXPECT_EQ(hostCalls, referenceReading(packet).calls);
        const std::string name = callbackOf(event);
        const Lines lines = bridgeLines();
        ASSERT_EQ(lines.size(), 3u) << name;
        EXPECT_EQ(lines[0], "D BRIDGE " + name + " (" + rawFields(event, packet) + ")\n");
        EXPECT_EQ(lines[1].rfind("I BRIDGE " + name + "Clbk called:", 0), 0u) << lines[1];
        EXPECT_EQ(lines[2], "D BRIDGE " + name + " returning\n");
    }
}

TEST_F(BridgeDecTest, SevenBytesAreNoPacket) {
    EXPECT_FALSE(decode(instanceListUpdatedPacket().substr(0, 7)));
    EXPECT_EQ(bridgeLines(), Lines{logged::packetTooShort("7")});
}

TEST_F(BridgeDecTest, TheOpcodesNextToTheEventsAreRefused) {
    EXPECT_FALSE(decode(packetOf(2999, "")));
    EXPECT_FALSE(decode(packetOf(lastOpcode() + 1, "")));
    EXPECT_EQ(bridgeLines(), (Lines{logged::opcodeInvalid("2999"),
                                    logged::opcodeInvalid(std::to_string(lastOpcode() + 1))}));
    EXPECT_EQ(hostCalls, Lines{});
}

TEST_F(BridgeDecTest, AHostWithoutFunctionsOnlyLogs) {
    bridgeSetCallbacks({});
    for (const KnownEvent& event : knownEvents()) {
        log.clear();
        EXPECT_TRUE(decode(validPacket(event)));
        EXPECT_EQ(bridgeLines().size(), 3u);
    }
    EXPECT_EQ(hostCalls, Lines{});
}

TEST_F(BridgeDecTest, EachMalformedPacketIsReadAsTheReferenceDoes) {
    const std::string good = appDisplayedPacket("good", "one");
    const Lines packets = malformedPackets();
    EXPECT_GE(packets.size(), 300u);
    for (const std::string& packet : packets) {
        hostCalls.clear();
        log.clear();
        const Reading expected = referenceReading(packet);
        ASSERT_EQ(decode(packet), expected.error.empty());
        ASSERT_EQ(hostCalls, expected.calls);
        if (expected.error.empty()) {
            ASSERT_EQ(log.texts(XLOG_ERROR), Lines{});
        } else {
            ASSERT_EQ(bridgeLines(), Lines{expected.error}) << "the only line";
        }
        hostCalls.clear();
        ASSERT_TRUE(decode(good));
        ASSERT_EQ(hostCalls, Lines{"onAppDisplayed(good|one)"});
    }
}

namespace {

std::int32_t dpiSeen = 0;
void lookAtDpi() { dpiSeen = confGetI32(confStore(), "vtr.instance.Nougat64.dpi"); }

}  // namespace

TEST_F(BridgeDecTest, TheConfigurationIsLoadedAgainBeforeTheHostIsCalled) {
    BridgeCallbacks host = writingHost();
    host.onInstanceListUpdated = lookAtDpi;
    host.onInstanceConfigurationChanged = [](const char*) { lookAtDpi(); };
    bridgeSetCallbacks(host);
    const auto expectSeen = [this](const char* dpi, const std::string& packet) {
        folder.write("vantrel.conf", std::string("vtr.instance.Nougat64.dpi=\"") + dpi + "\"\n");
        ASSERT_TRUE(decode(packet));
        EXPECT_EQ(std::to_string(dpiSeen), dpi);
    };
    expectSeen("320", instanceListUpdatedPacket());
    expectSeen("160", instanceConfigurationChangedPacket("Nougat64"));
    expectSeen("480", installImageProgressPacket("Nougat64", 2, 100));
}

TEST_F(BridgeDecTest, TheOtherEventsDoNotLoadTheConfiguration) {
    folder.write("vantrel.conf", "not a configuration\n");
    const Lines loading{"instance-list-updated", "instance-configuration-changed"};
    for (const KnownEvent& event : knownEvents()) {
        if (std::count(loading.begin(), loading.end(), event.name) > 0) continue;
        EXPECT_TRUE(decode(validPacket(event)));
    }
    EXPECT_EQ(log.texts(XLOG_ERROR), Lines{});
    EXPECT_EQ(hostCalls.size(), knownEvents().size() - loading.size());
}

TEST_F(BridgeDecTest, TheHostIsCalledAlsoWhenTheConfigurationCannotBeLoaded) {
    folder.write("vantrel.conf", "not a configuration\n");
    EXPECT_TRUE(decode(instanceListUpdatedPacket()));
    EXPECT_TRUE(decode(instanceConfigurationChangedPacket("N")));
    EXPECT_EQ(hostCalls, (Lines{"onInstanceListUpdated()", "onInstanceConfigurationChanged(N)"}));
    const Lines once{logged::confMalformed("not a configuration")};
    EXPECT_EQ(log.texts(XLOG_ERROR), (Lines{once[0], once[0]}));
}

TEST_F(BridgeDecTest, AHostThatListsTheInstancesAfterAFailedLoadSeesThoseBeforeTheBadLine) {
    BridgeCallbacks host = writingHost();
    host.onInstanceListUpdated = [] {
        for (const std::string& name : confGetInstances(confStore())) hostCalls.push_back(name);
    };
    bridgeSetCallbacks(host);
    folder.write("vantrel.conf",
                 "vtr.instance.Nougat32.dpi=\"240\"\n\nvtr.instance.Nougat64.dpi=\"240\"\n");
    EXPECT_TRUE(decode(instanceListUpdatedPacket()));
    EXPECT_EQ(hostCalls, Lines{"Nougat32"});
    EXPECT_EQ(log.texts(XLOG_ERROR), Lines{logged::confMalformed("")});
}

TEST_F(BridgeDecTest, TheHostIsCalledAlsoWhenTheLoadThrows) {
    folder.write("vantrel.conf", "vtr.instance.Nougat64.dpi=\n");
    EXPECT_TRUE(decode(instanceListUpdatedPacket()));
    EXPECT_EQ(hostCalls, Lines{"onInstanceListUpdated()"});
    const Lines errors = log.texts(XLOG_ERROR);
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_EQ(errors[0].find(logged::exceptionCaught("BRIDGE", "bridgeOnInstanceListUpdatedClbk")),
              0u)
        << errors[0];
}

TEST_F(BridgeDecTest, Slot4WithoutSlot3NeverHears) {
    BridgeCallbacks host = writingHost();
    host.onApkInstallCompleted = nullptr;
    bridgeSetCallbacks(host);
    EXPECT_TRUE(decode(instanceListUpdatedPacket()));
    EXPECT_TRUE(decode(installImageProgressPacket("Nougat32", 2, 100)));
    EXPECT_EQ(hostCalls, Lines{"installImageProgress(Nougat32|2|100.000000)"});
}

TEST_F(BridgeDecTest, AFunctionThatThrowsIsTheCallersToFence) {
    BridgeCallbacks host = writingHost();
    host.onAppDisplayed = [](const char*, const char*) { throw std::runtime_error("the host's"); };
    bridgeSetCallbacks(host);
    EXPECT_THROW(decode(appDisplayedPacket("N", "p")), std::runtime_error);
    EXPECT_TRUE(decode(appUninstalledPacket("N", "p")));
    EXPECT_EQ(hostCalls, Lines{"onAppUninstalled(N|p)"});
}

TEST_F(BridgeDecTest, LinesCarryTheirFunctionsNames) {
    ASSERT_TRUE(decode(appDisplayedPacket("N", "p")));
    ASSERT_FALSE(decode("short"));
    Lines places;
    for (const LogCapture::Line& line : log.lines()) {
        places.push_back(line.file + ": " + line.function);
    }
    EXPECT_EQ(places, (Lines{"Source/bridge/BridgeDec: decodeAppDisplayed",
                             "Source/bridge/BridgeIpcClbk: bridgeOnAppDisplayedClbk",
                             "Source/bridge/BridgeDec: decodeAppDisplayed",
                             "Source/bridge/BridgeDec: bridgeDecode"}));
}

TEST_F(BridgeDecTest, TheReplyStaysAsItIs) {
    const std::string before(64, 'r');
    std::string reply = before;
    const auto decodes = [&reply](const std::string& packet) {
        return bridgeDecode(nullptr, reinterpret_cast<const std::uint8_t*>(packet.data()),
                            static_cast<std::int32_t>(packet.size()), reply.data(),
                            static_cast<std::int32_t>(reply.size()));
    };
    for (const KnownEvent& event : knownEvents()) {
        EXPECT_TRUE(decodes(validPacket(event)));
        EXPECT_EQ(reply, before) << event.name;
    }
    EXPECT_FALSE(decodes(packetOf(2999, "")));
    EXPECT_FALSE(decodes(packetOf(lastOpcode() + 1, "")));
    EXPECT_EQ(reply, before);
}

// Slot 3 set and slot 4 null: the call would jump to no function.
SUBPROCESS(callsSlot4OfNull) {
    BridgeCallbacks host{};
    host.onApkInstallCompleted = [](const char*, bridge_i32, const char*) {};
    bridgeSetCallbacks(host);
    static_cast<void>(confLibInit(confStore(), "", false));
    const std::string packet = arguments.at(0) == "list"
                                   ? instanceListUpdatedPacket()
                                   : installImageProgressPacket("Nougat32", 2, 100);
    decodeInPlace(packet);
    return 0;
}

TEST(BridgeDecFatalTest, Slot3WithoutSlot4EndsTheProcessAtAListUpdate) {
    for (const char* event : {"list", "progress"}) {
        const ChildResult result = runSubprocess("callsSlot4OfNull", {event});
        EXPECT_EQ(result.status, kFatalStatus) << event;
        EXPECT_NE(result.out.find("FATAL: DEBUG BREAK: Source/bridge/BridgeIpcClbk:"),
                  std::string::npos)
            << result.out;
    }
}
