// The worked examples of docs/protocol.md, against what the library sends.
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <map>
#include <regex>
#include <string>

#include "ProtocolPage.h"
#include "mim/client/MimEnc.h"
#include "plr/client/PlrEnc.h"
#include "support/Platform.h"
#include "support/RawServer.h"

namespace {

// What stands in two columns of the page's rows that match.
std::map<std::string, std::string> pageRows(const std::regex& row) {
    const std::string page = kProtocolPage;
    std::map<std::string, std::string> rows;
    for (std::sregex_iterator it(page.begin(), page.end(), row), end; it != end; ++it) {
        rows[(*it)[1]] = (*it)[2];
    }
    return rows;
}

// Example to bytes, as the page has them.
std::map<std::string, std::string> pageExamples() {
    static const std::regex row(
        R"(\| \d+ \| [^|]* \| `([a-z]+[A-Za-z]*Rpc\([^`]*\))` \| `([0-9A-F ]+)` \|)");
    return pageRows(row);
}

// Opcode of an event to bytes.
std::map<std::string, std::string> pageEvents() {
    static const std::regex row(R"(\| (300\d) \| [^|]* \| [^|]* \| `([0-9A-F ]+)` \|)");
    return pageRows(row);
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

TEST(ProtocolPage, EveryEventIsLaidOutAsTheValuesAre) {
    const auto layOut = [](std::uint32_t opcode, IpcFields fields) {
        const IpcPacket packet = ipcLayOut(opcode, 0, fields);
        return std::string(reinterpret_cast<const char*>(packet.bytes.get()), packet.size);
    };
    // The one field of one byte has no place among the fields that requests have.
    std::string installed = layOut(3000, {"N", "p", "a", "l", 5, "1", "i"}) + '\1';
    installed[4] = static_cast<char>(installed.size());
    const std::map<std::string, std::string> expected = {
        {"3000", hexOf(installed)},
        {"3001", hexOf(layOut(3001, {"N", "p"}))},
        {"3002", hexOf(layOut(3002, {"N", 0, "f"}))},
        {"3003", hexOf(layOut(3003, {}))},
        {"3004", hexOf(layOut(3004, {"N", 1, 0.5}))},
        {"3005", hexOf(layOut(3005, {0, "N"}))},
        {"3006", hexOf(layOut(3006, {"N"}))},
        {"3007", hexOf(layOut(3007, {"N", "p"}))},
        {"3008", hexOf(layOut(3008, {"N", "e", 1}))},
    };
    EXPECT_EQ(pageEvents(), expected);
}
