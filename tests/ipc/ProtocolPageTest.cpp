// The rows and worked examples of docs/reference/protocol.md, against what the library sends and
// reads.
#include <regex>

#include "ProtocolPage.h"
#include "ipc/IpcEvent.h"
#include "mim/client/MimEnc.h"
#include "plr/client/PlrEnc.h"
#include "support/EventPackets.h"
#include "support/Platform.h"
#include "support/RawServer.h"
#include "support/TestHeaders.h"

namespace {

// Example to bytes of each request, as the page has them.
std::map<std::string, std::string> pageExamples() {
    static const std::regex row(
        R"(\| \d+ \| [^|]* \| `([a-z]+[A-Za-z]*Rpc\([^`]*\))` \| `([0-9A-F ]+)` \|)");
    const std::string page = kProtocolPage;
    std::map<std::string, std::string> rows;
    for (std::sregex_iterator it(page.begin(), page.end(), row), end; it != end; ++it) {
        rows[(*it)[1]] = (*it)[2];
    }
    return rows;
}

// A row of the page about an event.
struct EventRow {
    std::string opcode;
    std::string fields;
    Words example;  // the first one is the event's name
    std::string bytes;
};

std::vector<EventRow> pageEvents() {
    static const std::regex row(R"(\| (3\d+) \| ([^|]*) \| `([^`]*)` \| `([0-9A-F ]+)` \|)");
    const std::string page = kProtocolPage;
    std::vector<EventRow> rows;
    for (std::sregex_iterator it(page.begin(), page.end(), row), end; it != end; ++it) {
        std::istringstream words((*it)[3]);
        rows.push_back(
            {(*it)[1], (*it)[2], {std::istream_iterator<std::string>(words), {}}, (*it)[4]});
    }
    return rows;
}

std::string typeName(IpcEventFieldType type) {
    switch (type) {
        case IPC_TEXT:
            return "text";
        case IPC_I32:
            return "i32";
        case IPC_DOUBLE:
            return "double";
        case IPC_FLAG:
            break;
    }
    return "flag";
}

// The fields of an event as the page has them.
std::string fieldList(const IpcEvent& event) {
    std::string list;
    for (std::size_t i = 0; i < event.fieldCount; ++i) {
        list += list.empty() ? "" : ", ";
        list += typeName(event.fields[i].type) + " " + event.fields[i].name;
    }
    return list.empty() ? "none" : list;
}

std::string hexOf(const std::string& bytes) {
    static constexpr char digits[] = "0123456789ABCDEF";
    std::string text;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        if (!text.empty()) text += ' ';
        text += digits[byte >> 4];
        text += digits[byte & 15];
    }
    return text;
}

std::string sentBytes(const std::function<void(IpcClient&)>& encode) {
    const std::string name = "vtr_test_page_" + std::to_string(ownProcessId());
    std::string bytes;
    {
        // The reply lets the one request that waits for an answer go on.
        RawServer server(name, [&bytes](RawPipe& pipe) {
            bytes = pipe.read(12);
            if (bytes.size() == 12 && bytes[8] != 0) pipe.write("12345678");
            bytes += pipe.readAll();
        });
        IpcClient client;
        ipcClientInit(client, name);
        encode(client);
        for (int i = 0; i < 500 && server.served() == 0; ++i) sleepMs(2);
    }
    return hexOf(bytes);
}

}  // namespace

TEST(ProtocolPage, EveryExampleIsWhatTheLibrarySends) {
    const std::map<std::string, std::function<void(IpcClient&)>> calls = {
        {"plrShutdownRpc(true)", [](IpcClient& c) { plrShutdownRpc(c, true); }},
        {"plrBringToFrontRpc()", [](IpcClient& c) { plrBringToFrontRpc(c); }},
        {"plrEnableEcoModeRpc(true)", [](IpcClient& c) { plrEnableEcoModeRpc(c, true); }},
        {"plrMuteMediaRpc(false)", [](IpcClient& c) { plrMuteMediaRpc(c, false); }},
        {"plrResizeWindowRpc(1, 2, 3, -1)",
         [](IpcClient& c) { plrResizeWindowRpc(c, 1, 2, 3, -1); }},
        {R"(plrLaunchAppStoreRpc("a", "b"))",
         [](IpcClient& c) { plrLaunchAppStoreRpc(c, "a", "b"); }},
        {R"(plrLaunchAppRpc("com.a"))", [](IpcClient& c) { plrLaunchAppRpc(c, "com.a"); }},
        {R"(plrLaunchUrlRpc("é"))", [](IpcClient& c) { plrLaunchUrlRpc(c, "é"); }},
        {R"(plrUninstallAppRpc("com.a"))", [](IpcClient& c) { plrUninstallAppRpc(c, "com.a"); }},
        {R"(plrInstallApkRpc("C:\a"))", [](IpcClient& c) { plrInstallApkRpc(c, "C:\\a"); }},
        {"plrMnsSyncKeyEventRpc(65, true)",
         [](IpcClient& c) { plrMnsSyncKeyEventRpc(c, 65, true); }},
        {"plrMnsSyncMouseEventRpc(1, 0.5, -2, 3)",
         [](IpcClient& c) { plrMnsSyncMouseEventRpc(c, 1, 0.5, -2, 3); }},
        {R"(plrMnsSyncImeEventRpc("日"))", [](IpcClient& c) { plrMnsSyncImeEventRpc(c, "日"); }},
        {"plrMnsSyncUiEventRpc(7)", [](IpcClient& c) { plrMnsSyncUiEventRpc(c, 7); }},
        {R"(plrMnsSyncStartRpc("a", ""))", [](IpcClient& c) { plrMnsSyncStartRpc(c, "a", ""); }},
        {R"(plrMnsSyncStopRpc(""))", [](IpcClient& c) { plrMnsSyncStopRpc(c, ""); }},
        {"plrOnConfChangedRpc()", plrOnConfChangedRpc},
        {"plrMnsOnAnyMacroChangedRpc()", plrMnsOnAnyMacroChangedRpc},
        {"mimShutdownRpc()", mimShutdownRpc},
        {"mimBringToFrontRpc()", mimBringToFrontRpc},
        {R"(mimDownloadImageRpc("N"))", [](IpcClient& c) { mimDownloadImageRpc(c, "N"); }},
        {R"(mimCreateFreshInstanceRpc("N", "4", "1", "g", "r", "p"))",
         [](IpcClient& c) { mimCreateFreshInstanceRpc(c, "N", "4", "1", "g", "r", "p"); }},
    };
    const auto examples = pageExamples();
    ASSERT_EQ(examples.size(), 22u);
    for (const auto& [example, bytes] : examples) {
        const auto call = calls.find(example);
        ASSERT_NE(call, calls.end()) << example;
        EXPECT_EQ(sentBytes(call->second), bytes) << example;
    }
}

TEST(ProtocolPage, EveryEventHasTheFieldsThatTheLibraryReads) {
    const std::vector<EventRow> rows = pageEvents();
    ASSERT_EQ(rows.size(), std::size(IPC_EVENT_ROWS));
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(rows[i].opcode, std::to_string(IPC_EVENT_ROWS[i].opcode));
        EXPECT_EQ(rows[i].example.at(0), IPC_EVENT_ROWS[i].name);
        EXPECT_EQ(rows[i].fields, fieldList(IPC_EVENT_ROWS[i]));
    }
}

TEST(ProtocolPage, EveryEventIsLaidOutAsTheValuesAre) {
    for (const EventRow& row : pageEvents()) {
        const KnownEvent& event = knownEvent(row.example.at(0));
        const Words values(row.example.begin() + 1, row.example.end());
        EXPECT_EQ(row.bytes, hexOf(eventPacket(event, values))) << event.name;
    }
}
