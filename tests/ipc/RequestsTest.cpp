// The bytes of every request, as a server that shares no code with the library receives them.
#include "KnownRequests.h"
#include "mim/client/MimEnc.h"
#include "plr/client/PlrEnc.h"
#include "support/LogCapture.h"
#include "support/LogLines.h"
#include "support/RawServer.h"
#include "support/TestHeaders.h"

namespace {

const Words kTexts{"", "com.example.app", "é日\xF0\x9F\x8E\xAE", std::string(64 * 1024, 'x')};

// A different value for each field.
Words sampleOf(const KnownRequest& request) {
    Words values;
    for (const char type : request.fields) {
        const std::string place = std::to_string(values.size());
        values.push_back(type == 'b'   ? "1"
                         : type == 'i' ? "-7" + place
                         : type == 'd' ? place + ".5"
                                       : "t" + place);
    }
    return values;
}

// The values as the log shows them: doubles have six digits.
std::string shown(const KnownRequest& request, const Words& values) {
    std::string text;
    for (std::size_t i = 0; i < values.size(); ++i) {
        text += i == 0 ? "" : ", ";
        text += request.fields[i] == 'd' ? std::to_string(std::stod(values[i])) : values[i];
    }
    return text;
}

void expectSent(const KnownRequest& request, const Words& values) {
    EXPECT_TRUE(sentBytes(request, values) == requestPacket(request, values)) << request.name;
}

// Sends each request that has one of these lists of fields, with each value in each field of the
// type.
void expectSentWithEach(const Words& values, char type, const Lines& fields) {
    for (const KnownRequest& request : knownRequests()) {
        if (std::count(fields.begin(), fields.end(), request.fields) == 0) continue;
        for (std::size_t i = 0; i < request.fields.size(); ++i) {
            if (request.fields[i] != type) continue;
            for (const std::string& value : values) {
                Words all = sampleOf(request);
                all[i] = value;
                expectSent(request, all);
            }
        }
    }
}

// Sends a request, and expects its bytes and the two lines of its call.
void expectSentAndLogged(const KnownRequest& request, const Words& values) {
    SCOPED_TRACE(request.name);
    const LogCapture log;
    expectSent(request, values);
    Lines lines;
    for (const std::string& line : log.texts(XLOG_DEBUG)) {
        if (line.find(" IPC ") == std::string::npos) lines.push_back(line);
    }
    const std::string tag = request.opcode < 4000 ? "D PLR " : "D MIM ";
    const std::string call = request.name + "(" + shown(request, values) + ")\n";
    const std::string returning =
        request.replyLength() == 0 ? "returning from " : "returning [72623859790382856] from ";
    EXPECT_EQ(lines, (Lines{tag + call, tag + returning + call}));
}

std::string lettersOf(const IpcRequest& request) {
    static const std::map<IpcFieldType, char> letters{{IpcFieldType::Bool, 'b'},
                                                      {IpcFieldType::I32, 'i'},
                                                      {IpcFieldType::Double, 'd'},
                                                      {IpcFieldType::Text, 't'}};
    std::string all;
    for (std::size_t i = 0; i < request.fieldCount; ++i) all += letters.at(request.fields[i]);
    return all;
}

}  // namespace

TEST(Requests, WithoutFields) {
    for (const char* name : {"plrOnConfChangedRpc", "plrMnsOnAnyMacroChangedRpc", "mimShutdownRpc",
                             "mimBringToFrontRpc"}) {
        expectSent(knownRequest(name), {});
    }
    EXPECT_EQ(requestPacket(knownRequest("mimShutdownRpc"), {}),
              std::string("\xA0\x0F\0\0\x0C\0\0\0\0\0\0\0", 12));
}

TEST(Requests, WithABool) { expectSentWithEach({"0", "1"}, 'b', {"b", "ib"}); }

TEST(Requests, WithNumbers) {
    expectSentWithEach({"1", "-2", "-65", "-2147483648", "2147483647"}, 'i', {"iiii", "i", "ib"});
}

TEST(Requests, WithDoubles) {
    expectSentWithEach({"0", "-0", "1.5", "inf", "-inf", "nan", "4.9406564584124654e-324"}, 'd',
                       {"iddi"});
}

TEST(Requests, WithOneText) {
    expectSentWithEach(kTexts, 't', {"t"});
    EXPECT_EQ(requestPacket(knownRequest("plrLaunchAppRpc"), {"com.example.app"}),
              std::string("\xD6\x07\0\0\x20\0\0\0\0\0\0\0\x10\0\0\0com.example.app\0", 32));
}

TEST(Requests, WithTwoTexts) { expectSentWithEach(kTexts, 't', {"tt"}); }

TEST(Requests, WithSixTexts) { expectSentWithEach(kTexts, 't', {"tttttt"}); }

TEST(Requests, BringToFrontReturnsTheReply) {
    std::uint64_t reply = 0;
    KnownRequest request = knownRequest("plrBringToFrontRpc");
    request.encode = [&reply](IpcClient& c, const Words&) { reply = plrBringToFrontRpc(c); };
    expectSentAndLogged(request, {});
    EXPECT_EQ(reply, 0x0102030405060708u);
}

TEST(Requests, BringToFrontWithoutAServerOrAReplyReturnsZero) {
    const LogCapture log;
    const auto ask = [] {
        IpcClient client;
        ipcClientInit(client, requestServer());
        return plrBringToFrontRpc(client);
    };
    EXPECT_EQ(ask(), 0u);
    RawServer server(requestServer(), [](RawPipe& pipe) {
        pipe.read(12);
        pipe.write("abc");
    });
    EXPECT_EQ(ask(), 0u);
    EXPECT_EQ(log.texts(XLOG_ERROR),
              (Lines{logged::requestNotSent("PLR", "plrBringToFrontRpc", "2001"),
                     logged::replyNotRead(requestServer()),
                     "E PLR plrBringToFrontRpc: ipcReadFromServer command failed, opcode = 2001"}));
}

TEST(Requests, EntryAndExitAreLoggedWithTheArguments) {
    const std::pair<const char*, Words> calls[] = {
        {"plrShutdownRpc", {"0"}},
        {"plrLaunchAppStoreRpc", {"a", "b"}},
        {"plrMnsSyncKeyEventRpc", {"-3", "0"}},
        {"plrResizeWindowRpc", {"1", "2", "3", "4"}},
        {"plrMnsSyncMouseEventRpc", {"1", "0.5", "-2", "3"}},
        {"mimCreateFreshInstanceRpc", {"a", "b", "c", "d", "e", "f"}}};
    for (const auto& [name, values] : calls) expectSentAndLogged(knownRequest(name), values);
}

TEST(Requests, AMissingServerIsAnErrorLineOnly) {
    const LogCapture log;
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
    // The same text of 128 MiB in 16 fields.
    const std::string text(std::size_t{128} << 20, 'x');
    const IpcField t = text.c_str();
    const IpcPacket packet = ipcLayOut(1, 0, {t, t, t, t, t, t, t, t, t, t, t, t, t, t, t, t});
    EXPECT_EQ(packet.size, 12 + 16 * ipcTextSize(text.size()));
    EXPECT_GT(packet.size, IPC_PACKET_SIZE_MAX);
    EXPECT_TRUE(packet.bytes == nullptr);
}

TEST(Requests, TheCatalogueHasEveryRequestOnce) {
    std::vector<IpcRequest> catalogue(PLR_REQUESTS, PLR_REQUESTS + PLR_REQUEST_COUNT);
    catalogue.insert(catalogue.end(), MIM_REQUESTS, MIM_REQUESTS + MIM_REQUEST_COUNT);
    ASSERT_EQ(catalogue.size(), knownRequests().size());
    for (std::size_t i = 0; i < catalogue.size(); ++i) {
        const KnownRequest& request = knownRequests()[i];
        EXPECT_EQ(catalogue[i].opcode, request.opcode);
        EXPECT_EQ(catalogue[i].name, request.name);
        EXPECT_EQ(catalogue[i].replyLength, request.replyLength());
        EXPECT_EQ(lettersOf(catalogue[i]), request.fields) << request.name;
    }
}

TEST(Requests, EachEncoderSendsItsRowAndLogsItsArguments) {
    ASSERT_EQ(knownRequests().size(), 22u);
    for (const KnownRequest& request : knownRequests()) {
        expectSentAndLogged(request, sampleOf(request));
    }
}
