// The bytes of every request, as a server that shares no code with the library receives them.
#include "mim/client/MimEnc.h"
#include "plr/client/PlrEnc.h"
#include "support/LogCapture.h"
#include "support/LogLines.h"
#include "support/Platform.h"
#include "support/RawServer.h"
#include "support/TestHeaders.h"

namespace {

// Bytes as the protocol has them, written down independently.
class Bytes {
 public:
    Bytes& u32(std::uint32_t value) {
        for (int shift = 0; shift < 32; shift += 8) text_ += static_cast<char>(value >> shift);
        return *this;
    }
    Bytes& i32(std::int32_t value) { return u32(static_cast<std::uint32_t>(value)); }
    Bytes& f64(double value) {
        std::uint64_t bits;
        std::memcpy(&bits, &value, sizeof bits);
        u32(static_cast<std::uint32_t>(bits));
        return u32(static_cast<std::uint32_t>(bits >> 32));
    }
    Bytes& text(const std::string& value) {
        u32(static_cast<std::uint32_t>(value.size() + 1));
        text_ += value;
        text_ += '\0';
        return *this;
    }
    // The packet with a header in front of what was added so far.
    std::string packet(std::uint32_t opcode, std::uint32_t reply = 0) const {
        Bytes header;
        header.u32(opcode).u32(static_cast<std::uint32_t>(12 + text_.size())).u32(reply);
        return header.text_ + text_;
    }

 private:
    std::string text_;
};

std::string serverName() { return "vtr_test_requests_" + std::to_string(ownProcessId()); }

using Encode = std::function<void(IpcClient& client)>;

// What arrives at the server when a request is encoded.
std::string received(const Encode& encode) {
    std::string bytes;
    {
        RawServer server(serverName(), [&bytes](RawPipe& pipe) { bytes = pipe.readAll(); });
        IpcClient client;
        EXPECT_EQ(ipcClientInit(client, serverName()), 0);
        encode(client);
        for (int i = 0; i < 500 && server.served() == 0; ++i) sleepMs(2);
    }
    return bytes;
}

const std::string kTexts[] = {"", "com.example.app", "é日\xF0\x9F\x8E\xAE",
                              std::string(64 * 1024, 'x')};
constexpr bool kBools[] = {false, true};

}  // namespace

TEST(Requests, WithoutFields) {
    EXPECT_EQ(received(plrOnConfChangedRpc), Bytes().packet(2016));
    EXPECT_EQ(received(plrMnsOnAnyMacroChangedRpc), Bytes().packet(2017));
    EXPECT_EQ(received(mimShutdownRpc), Bytes().packet(4000));
    EXPECT_EQ(received(mimBringToFrontRpc), Bytes().packet(4001));
    EXPECT_EQ(Bytes().packet(4000), std::string("\xA0\x0F\0\0\x0C\0\0\0\0\0\0\0", 12));
}

TEST(Requests, WithABool) {
    for (const bool flag : kBools) {
        const std::int32_t number = flag ? 1 : 0;
        EXPECT_EQ(received([&](IpcClient& c) { plrShutdownRpc(c, flag); }),
                  Bytes().i32(number).packet(2000));
        EXPECT_EQ(received([&](IpcClient& c) { plrEnableEcoModeRpc(c, flag); }),
                  Bytes().i32(number).packet(2002));
        EXPECT_EQ(received([&](IpcClient& c) { plrMuteMediaRpc(c, flag); }),
                  Bytes().i32(number).packet(2003));
        EXPECT_EQ(received([&](IpcClient& c) { plrMnsSyncKeyEventRpc(c, -65, flag); }),
                  Bytes().i32(-65).i32(number).packet(2010));
    }
}

TEST(Requests, WithNumbers) {
    EXPECT_EQ(received([](IpcClient& c) { plrResizeWindowRpc(c, 1, -2, INT32_MIN, INT32_MAX); }),
              Bytes().i32(1).i32(-2).i32(INT32_MIN).i32(INT32_MAX).packet(2004));
    EXPECT_EQ(received([](IpcClient& c) { plrMnsSyncUiEventRpc(c, -1); }),
              Bytes().i32(-1).packet(2013));
}

TEST(Requests, WithDoubles) {
    const double values[] = {0.0,
                             -0.0,
                             1.5,
                             std::numeric_limits<double>::infinity(),
                             -std::numeric_limits<double>::infinity(),
                             std::numeric_limits<double>::quiet_NaN(),
                             std::numeric_limits<double>::denorm_min()};
    for (const double value : values) {
        const std::string packet =
            received([&](IpcClient& c) { plrMnsSyncMouseEventRpc(c, 7, value, -value, -8); });
        EXPECT_EQ(packet, Bytes().i32(7).f64(value).f64(-value).i32(-8).packet(2011)) << value;
        EXPECT_EQ(packet.size(), 36u);
    }
}

TEST(Requests, WithOneText) {
    const struct {
        std::uint32_t opcode;
        void (*encode)(IpcClient&, const char*);
    } requests[] = {{2006, plrLaunchAppRpc},       {2007, plrLaunchUrlRpc},
                    {2008, plrUninstallAppRpc},    {2009, plrInstallApkRpc},
                    {2012, plrMnsSyncImeEventRpc}, {2015, plrMnsSyncStopRpc},
                    {4002, mimDownloadImageRpc}};
    for (const auto& request : requests) {
        for (const std::string& text : kTexts) {
            EXPECT_TRUE(received([&](IpcClient& c) { request.encode(c, text.c_str()); }) ==
                        Bytes().text(text).packet(request.opcode))
                << request.opcode << " " << text.size();
        }
    }
    EXPECT_EQ(received([](IpcClient& c) { plrLaunchAppRpc(c, "com.example.app"); }),
              std::string("\xD6\x07\0\0\x20\0\0\0\0\0\0\0\x10\0\0\0com.example.app\0", 32));
}

TEST(Requests, WithTwoTexts) {
    for (const std::string& text : kTexts) {
        EXPECT_TRUE(received([&](IpcClient& c) { plrLaunchAppStoreRpc(c, text.c_str(), "b"); }) ==
                    Bytes().text(text).text("b").packet(2005));
        EXPECT_TRUE(received([&](IpcClient& c) { plrMnsSyncStartRpc(c, "a", text.c_str()); }) ==
                    Bytes().text("a").text(text).packet(2014));
    }
    EXPECT_EQ(received([](IpcClient& c) { plrLaunchAppStoreRpc(c, "", ""); }).size(), 22u);
}

TEST(Requests, WithSixTexts) {
    for (const std::string& text : kTexts) {
        EXPECT_TRUE(
            received([&](IpcClient& c) {
                mimCreateFreshInstanceRpc(c, text.c_str(), "2", "", "g", "r", text.c_str());
            }) ==
            Bytes().text(text).text("2").text("").text("g").text("r").text(text).packet(4003));
    }
}

TEST(Requests, BringToFrontReturnsTheReply) {
    std::string bytes;
    std::uint64_t answer = 0;
    LogCapture log;
    {
        RawServer server(serverName(), [&bytes](RawPipe& pipe) {
            bytes = pipe.read(12);
            pipe.write("\x08\x07\x06\x05\x04\x03\x02\x01");
            pipe.readAll();
        });
        IpcClient client;
        ipcClientInit(client, serverName());
        log.clear();
        answer = plrBringToFrontRpc(client);
    }
    EXPECT_EQ(bytes, Bytes().packet(2001, 8));
    EXPECT_EQ(answer, 0x0102030405060708u);
    const Lines lines = log.texts(XLOG_DEBUG);
    EXPECT_EQ(lines.front(), "D PLR plrBringToFrontRpc()\n");
    EXPECT_EQ(std::count(lines.begin(), lines.end(),
                         "D PLR returning [72623859790382856] from plrBringToFrontRpc()\n"),
              1);
}

TEST(Requests, BringToFrontWithoutAServerOrAReplyAnswersZero) {
    const LogCapture log;
    {
        IpcClient client;
        ipcClientInit(client, serverName());
        EXPECT_EQ(plrBringToFrontRpc(client), 0u);
    }
    RawServer server(serverName(), [](RawPipe& pipe) {
        pipe.read(12);
        pipe.write("abc");
    });
    IpcClient client;
    ipcClientInit(client, serverName());
    EXPECT_EQ(plrBringToFrontRpc(client), 0u);
    EXPECT_EQ(log.texts(XLOG_ERROR),
              (Lines{logged::requestNotSent("PLR", "plrBringToFrontRpc", "2001"),
                     logged::replyNotRead(serverName()),
                     "E PLR plrBringToFrontRpc: ipcReadFromServer command failed, opcode = 2001"}));
}

TEST(Requests, EntryAndExitAreLoggedWithTheArguments) {
    const auto expectLines = [](const std::string& call, const Encode& encode) {
        LogCapture log;
        received(encode);
        Lines lines;
        for (const LogCapture::Line& line : log.lines()) {
            if (line.tag != XlogTag::IPC) lines.push_back(line.message);
        }
        EXPECT_EQ(lines, (Lines{call + "\n", "returning from " + call + "\n"}));
    };
    expectLines("plrShutdownRpc(1)", [](IpcClient& c) { plrShutdownRpc(c, true); });
    expectLines("plrLaunchAppStoreRpc(a, b)",
                [](IpcClient& c) { plrLaunchAppStoreRpc(c, "a", "b"); });
    expectLines("plrMnsSyncKeyEventRpc(-3, 0)",
                [](IpcClient& c) { plrMnsSyncKeyEventRpc(c, -3, false); });
    expectLines("plrResizeWindowRpc(1, 2, 3, 4)",
                [](IpcClient& c) { plrResizeWindowRpc(c, 1, 2, 3, 4); });
    expectLines("plrMnsSyncMouseEventRpc(1, 0.500000, -2.000000, 3)",
                [](IpcClient& c) { plrMnsSyncMouseEventRpc(c, 1, 0.5, -2, 3); });
    expectLines("mimCreateFreshInstanceRpc(a, b, c, d, e, f)",
                [](IpcClient& c) { mimCreateFreshInstanceRpc(c, "a", "b", "c", "d", "e", "f"); });
    expectLines("mimShutdownRpc()", mimShutdownRpc);
}

TEST(Requests, AServerThatIsNotThereIsAnErrorLineOnly) {
    LogCapture log;
    IpcClient client;
    ipcClientInit(client, "vtr_plr_nobody_nvo");
    plrMuteMediaRpc(client, true);
    EXPECT_EQ(log.texts(XLOG_ERROR),
              Lines{logged::requestNotSent("PLR", "plrMuteMediaRpc", "2003")});
}

TEST(Requests, TheSizeOfATextIsNotCutTo32Bits) {
    EXPECT_EQ(ipcTextSize(0), 5u);
    EXPECT_EQ(ipcTextSize(0xFFFFFFFF), std::size_t{0x100000004});
    EXPECT_EQ(ipcTextSize(0x7FFFFFFF), std::size_t{0x80000004});
}

TEST(Requests, APacketBeyondTheLongestIsNotLaidOut) {
    // One text of 128 MiB, in as many fields as it takes.
    const std::string text(std::size_t{128} << 20, 'x');
    const IpcField t = text.c_str();
    const IpcPacket packet = ipcLayOut(1, 0, {t, t, t, t, t, t, t, t, t, t, t, t, t, t, t, t});
    EXPECT_EQ(packet.size, 12 + 16 * ipcTextSize(text.size()));
    EXPECT_GT(packet.size, IPC_PACKET_SIZE_MAX);
    EXPECT_TRUE(packet.bytes == nullptr);
}

namespace {

// A request as the protocol has it. Letters of the fields: b bool, i 32-bit number, d double,
// t text.
struct Expected {
    std::uint32_t opcode;
    std::string encoder;
    std::string fields;
    Encode encode;  // with the values of ExpectedCall
};

// What a call with the values of the table makes: by its place each field has another.
struct ExpectedCall {
    explicit ExpectedCall(const Expected& expected) {
        Bytes bytes;
        for (std::size_t place = 0; place < expected.fields.size(); ++place) {
            if (place > 0) arguments += ", ";
            add(bytes, expected.fields[place], static_cast<int>(place));
        }
        packet = bytes.packet(expected.opcode, expected.opcode == 2001 ? 8 : 0);
    }

    std::string arguments;
    std::string packet;

 private:
    void add(Bytes& bytes, char field, int place) {
        switch (field) {
            case 'b':
                bytes.i32(1);
                arguments += "1";
                break;
            case 'i':
                bytes.i32(-7 - place);
                arguments += std::to_string(-7 - place);
                break;
            case 'd':
                bytes.f64(place + 0.5);
                arguments += std::to_string(place) + ".500000";
                break;
            default:
                bytes.text("t" + std::to_string(place));
                arguments += "t" + std::to_string(place);
        }
    }
};

const std::vector<Expected>& expectedRequests() {
    static const auto& all = *new std::vector<Expected>{
        {2000, "plrShutdownRpc", "b", [](IpcClient& c) { plrShutdownRpc(c, true); }},
        {2001, "plrBringToFrontRpc", "", [](IpcClient& c) { plrBringToFrontRpc(c); }},
        {2002, "plrEnableEcoModeRpc", "b", [](IpcClient& c) { plrEnableEcoModeRpc(c, true); }},
        {2003, "plrMuteMediaRpc", "b", [](IpcClient& c) { plrMuteMediaRpc(c, true); }},
        {2004, "plrResizeWindowRpc", "iiii",
         [](IpcClient& c) { plrResizeWindowRpc(c, -7, -8, -9, -10); }},
        {2005, "plrLaunchAppStoreRpc", "tt",
         [](IpcClient& c) { plrLaunchAppStoreRpc(c, "t0", "t1"); }},
        {2006, "plrLaunchAppRpc", "t", [](IpcClient& c) { plrLaunchAppRpc(c, "t0"); }},
        {2007, "plrLaunchUrlRpc", "t", [](IpcClient& c) { plrLaunchUrlRpc(c, "t0"); }},
        {2008, "plrUninstallAppRpc", "t", [](IpcClient& c) { plrUninstallAppRpc(c, "t0"); }},
        {2009, "plrInstallApkRpc", "t", [](IpcClient& c) { plrInstallApkRpc(c, "t0"); }},
        {2010, "plrMnsSyncKeyEventRpc", "ib",
         [](IpcClient& c) { plrMnsSyncKeyEventRpc(c, -7, true); }},
        {2011, "plrMnsSyncMouseEventRpc", "iddi",
         [](IpcClient& c) { plrMnsSyncMouseEventRpc(c, -7, 1.5, 2.5, -10); }},
        {2012, "plrMnsSyncImeEventRpc", "t", [](IpcClient& c) { plrMnsSyncImeEventRpc(c, "t0"); }},
        {2013, "plrMnsSyncUiEventRpc", "i", [](IpcClient& c) { plrMnsSyncUiEventRpc(c, -7); }},
        {2014, "plrMnsSyncStartRpc", "tt", [](IpcClient& c) { plrMnsSyncStartRpc(c, "t0", "t1"); }},
        {2015, "plrMnsSyncStopRpc", "t", [](IpcClient& c) { plrMnsSyncStopRpc(c, "t0"); }},
        {2016, "plrOnConfChangedRpc", "", plrOnConfChangedRpc},
        {2017, "plrMnsOnAnyMacroChangedRpc", "", plrMnsOnAnyMacroChangedRpc},
        {4000, "mimShutdownRpc", "", mimShutdownRpc},
        {4001, "mimBringToFrontRpc", "", mimBringToFrontRpc},
        {4002, "mimDownloadImageRpc", "t", [](IpcClient& c) { mimDownloadImageRpc(c, "t0"); }},
        {4003, "mimCreateFreshInstanceRpc", "tttttt",
         [](IpcClient& c) { mimCreateFreshInstanceRpc(c, "t0", "t1", "t2", "t3", "t4", "t5"); }},
    };
    return all;
}

std::string lettersOf(const IpcRequest& request) {
    std::string letters;
    for (std::size_t i = 0; i < request.fieldCount; ++i) {
        switch (request.fields[i]) {
            case IpcFieldType::Bool:
                letters += 'b';
                break;
            case IpcFieldType::I32:
                letters += 'i';
                break;
            case IpcFieldType::Double:
                letters += 'd';
                break;
            case IpcFieldType::Text:
                letters += 't';
        }
    }
    return letters;
}

}  // namespace

TEST(Requests, TheCatalogueHasEveryRequestOnce) {
    std::vector<IpcRequest> catalogue(PLR_REQUESTS, PLR_REQUESTS + PLR_REQUEST_COUNT);
    catalogue.insert(catalogue.end(), MIM_REQUESTS, MIM_REQUESTS + MIM_REQUEST_COUNT);
    ASSERT_EQ(catalogue.size(), 22u);
    ASSERT_EQ(expectedRequests().size(), 22u);
    for (std::size_t i = 0; i < catalogue.size(); ++i) {
        const Expected& expected = expectedRequests()[i];
        EXPECT_EQ(catalogue[i].opcode, expected.opcode);
        EXPECT_EQ(catalogue[i].name, expected.encoder);
        EXPECT_EQ(catalogue[i].replyLength, expected.opcode == 2001 ? 8u : 0u);
        EXPECT_EQ(lettersOf(catalogue[i]), expected.fields) << expected.encoder;
    }
}

TEST(Requests, EachEncoderSendsItsRowAndLogsItsArguments) {
    for (const Expected& expected : expectedRequests()) {
        const ExpectedCall call(expected);
        std::string bytes;
        LogCapture log;
        {
            RawServer server(serverName(), [&](RawPipe& pipe) {
                bytes = pipe.read(call.packet.size());
                if (expected.opcode == 2001) pipe.write("\x08\x07\x06\x05\x04\x03\x02\x01");
                bytes += pipe.readAll();
            });
            IpcClient client;
            ASSERT_EQ(ipcClientInit(client, serverName()), 0);
            expected.encode(client);
            for (int i = 0; i < 500 && server.served() == 0; ++i) sleepMs(2);
        }
        EXPECT_EQ(bytes, call.packet) << expected.encoder;
        const std::string tag = expected.opcode < 4000 ? "D PLR " : "D MIM ";
        const std::string shown = expected.encoder + "(" + call.arguments + ")\n";
        const std::string before =
            expected.opcode == 2001 ? "returning [72623859790382856] from " : "returning from ";
        Lines lines;
        for (const std::string& line : log.texts(XLOG_DEBUG)) {
            if (line.find(" IPC ") == std::string::npos) lines.push_back(line);
        }
        EXPECT_EQ(lines, (Lines{tag + shown, tag + before + shown}));
    }
}
