// From packets to the host's functions, with their log lines.
#include "bridge/BridgeDec.h"

#include "GuardedBytes.h"
#include "HostCalls.h"
#include "conf/Conf.h"
#include "support/EventPackets.h"
#include "support/FatalBreak.h"
#include "support/LogCapture.h"
#include "support/LogLines.h"
#include "support/MalformedPackets.h"
#include "support/TempFolder.h"
#include "support/TestHeaders.h"

#include <cctype>

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

    // Decodes a packet that ends where accessible memory ends.
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

// The address of an offset in a packet, as "%p" prints it.
std::string address(const std::string& packet, std::size_t offset) {
    char text[32];
    std::snprintf(text, sizeof text, "%p", static_cast<const void*>(packet.data() + offset));
    return text;
}

// "onAppDisplayed" is the slot of "bridgeOnAppDisplayed".
std::string functionOf(const KnownEvent& event) {
    std::string name = event.slot;
    name[0] = static_cast<char>(std::toupper(name[0]));
    return "bridge" + name;
}

// The values as the line of the call shows them: texts with their address and size.
std::string rawFields(const KnownEvent& event, const Words& values, const std::string& packet) {
    std::string all;
    std::size_t at = 12;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const char type = event.fields[i].type;
        const std::size_t size = values[i].size() + 1;
        if (!all.empty()) all += ", ";
        all += type == 't'   ? address(packet, at + 4) + "(" + std::to_string(size) + ")"
               : type == 'd' ? std::to_string(std::stod(values[i]))
                             : values[i];
        at += type == 't' ? 4 + size : type == 'd' ? 8 : 4;
    }
    return all;
}

bool decodeInPlace(const std::string& packet) {
    return bridgeDecode(nullptr, reinterpret_cast<const std::uint8_t*>(packet.data()),
                        static_cast<std::int32_t>(packet.size()), nullptr, 0);
}

// An event with its values, the host's call, and the values in its log line.
struct DecodedEvent {
    const char* name;
    const char* event;
    Words values;
    const char* call;
    const char* words;
};

void PrintTo(const DecodedEvent& event, std::ostream* out) { *out << event.name; }

class BridgeDecEventTest : public BridgeDecTest,
                           public ::testing::WithParamInterface<DecodedEvent> {};

TEST_P(BridgeDecEventTest, ReachesItsSlot) {
    const DecodedEvent& row = GetParam();
    const KnownEvent& event = knownEvent(row.event);
    const std::string packet = eventPacket(event, row.values);
    ASSERT_TRUE(decodeInPlace(packet));
    EXPECT_EQ(hostCalls, Lines{row.call});
    const std::string function = " BRIDGE " + functionOf(event);
    EXPECT_EQ(
        bridgeLines(),
        (Lines{"D" + function + " (" + rawFields(event, row.values, packet) + ")\n",
               "I" + function + "Clbk called: " + row.words, "D" + function + " returning\n"}));
}

INSTANTIATE_TEST_SUITE_P(
    Events, BridgeDecEventTest,
    ::testing::Values(
        DecodedEvent{"AnInstalledAppReachesSlot1",
                     "app-installed",
                     {"N", "com.a", "Main", "Größe 大", "-7", "1.2", "C:\\i.png", "1"},
                     "onAppInstalled(N|com.a|Main|Größe 大|-7|1.2|C:\\i.png|1)",
                     "instance N, package com.a, activity Main, appLabel Größe 大, versionCode -7, "
                     "versionName 1.2, iconFilePath C:\\i.png, isUpdate 1"},
        DecodedEvent{"AnUninstalledAppReachesSlot2",
                     "app-uninstalled",
                     {"N", "com.a"},
                     "onAppUninstalled(N|com.a)",
                     "instance N, package com.a"},
        DecodedEvent{"AFinishedApkReachesSlot3",
                     "apk-install-completed",
                     {"N", "-2", "C:\\a.apk"},
                     "onApkInstallCompleted(N|-2|C:\\a.apk)",
                     "instance N, status -2, apkFilePath C:\\a.apk"},
        DecodedEvent{"ProgressReachesSlot5Alone",
                     "image-install-progress",
                     {"Nougat32", "1", "62.5"},
                     "installImageProgress(Nougat32|1|62.500000)",
                     "imageName Nougat32, status 1, progress 62.500000"},
        DecodedEvent{"ACreatedInstanceComesWithItsStatusFirst",
                     "create-instance-completed",
                     {"3", "Nougat64_1"},
                     "onCreateInstanceCompleted(3|Nougat64_1)",
                     "status 3, instance Nougat64_1"},
        DecodedEvent{"AChangedConfigurationReachesSlot7",
                     "instance-configuration-changed",
                     {"N"},
                     "onInstanceConfigurationChanged(N)",
                     "instance N"},
        DecodedEvent{"ADisplayedAppReachesSlot8",
                     "app-displayed",
                     {"N", "com.a"},
                     "onAppDisplayed(N|com.a)",
                     "instance N, package com.a"},
        DecodedEvent{"AnAccountListReachesSlot9",
                     "account-list-updated",
                     {"N", "a@b.c", "1"},
                     "onAccountListUpdated(N|a@b.c|1)",
                     "instance N, emailId a@b.c, action = 1"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(BridgeDecTest, AnyByteButZeroIsAnUpdate) {
    ASSERT_TRUE(decode(appInstalledPacket("", "", "", "", 0, "", "", 200)));
    EXPECT_EQ(hostCalls, Lines{"onAppInstalled(||||0|||1)"});
    EXPECT_EQ(bridgeLines()[0].substr(bridgeLines()[0].rfind(' ')), " 200)\n");
}

TEST_F(BridgeDecTest, AnAppThatIsNewIsNoUpdate) {
    ASSERT_TRUE(decode(appInstalledPacket("", "", "", "", 0, "", "", 0)));
    EXPECT_EQ(hostCalls, Lines{"onAppInstalled(||||0|||0)"});
}

TEST_F(BridgeDecTest, AnInstanceListOfEightBytesIsEnough) {
    ASSERT_TRUE(decode(instanceListUpdatedPacket().substr(0, 8)));
    EXPECT_EQ(hostCalls, Lines{"onInstanceListUpdated()"});
    EXPECT_EQ(bridgeLines(), (Lines{"D BRIDGE bridgeOnInstanceListUpdated ()\n",
                                    "I BRIDGE bridgeOnInstanceListUpdatedClbk called:",
                                    "D BRIDGE bridgeOnInstanceListUpdated returning\n"}));
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

// The lines of every event. The tests above cover special cases.
TEST_F(BridgeDecTest, EachEventReachesItsSlotBetweenTheLinesOfItsCall) {
    for (const KnownEvent& event : knownEvents()) {
        hostCalls.clear();
        log.clear();
        const std::string packet = eventPacket(event, exampleOf(event));
        ASSERT_TRUE(decodeInPlace(packet));
        EXPECT_EQ(hostCalls, referenceReading(packet).calls);
        const std::string name = functionOf(event);
        const Lines lines = bridgeLines();
        ASSERT_EQ(lines.size(), 3u) << name;
        EXPECT_EQ(lines[0],
                  "D BRIDGE " + name + " (" + rawFields(event, exampleOf(event), packet) + ")\n");
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

std::int32_t dpiSeen = 0;
void lookAtDpi() { dpiSeen = confGetI32(confStore(), "vtr.instance.Nougat64.dpi"); }

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

TEST_F(BridgeDecTest, Slot4WithoutSlot3IsNeverCalled) {
    BridgeCallbacks host = writingHost();
    host.onApkInstallCompleted = nullptr;
    bridgeSetCallbacks(host);
    EXPECT_TRUE(decode(instanceListUpdatedPacket()));
    EXPECT_TRUE(decode(installImageProgressPacket("Nougat32", 2, 100)));
    EXPECT_EQ(hostCalls, Lines{"installImageProgress(Nougat32|2|100.000000)"});
}

TEST_F(BridgeDecTest, AnExceptionOfTheHostsReachesTheCaller) {
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
        const Lines lines = linesUntilBreak("callsSlot4OfNull", {event});
        ASSERT_FALSE(lines.empty()) << event;
        EXPECT_EQ(lines.back(), logged::fatalBreak("", "Source/bridge/BridgeIpcClbk"));
    }
}

}  // namespace
