// The worked examples of docs/protocol.md, against what the library sends.
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <regex>

#include "ProtocolPage.h"
#include "mim/MimEnc.h"
#include "plr/PlrEnc.h"
#include "support/RawServer.h"
#include "support/WindowsForTests.h"

namespace {

// Example to bytes, as the page has them.
std::map<std::string, std::string> pageExamples() {
    static const std::regex row(
        R"(\| \d+ \| [^|]* \| `([a-z]+[A-Za-z]*Rpc\([^`]*\))` \| `([0-9A-F ]+)` \|)");
    const std::string page = kProtocolPage;
    std::map<std::string, std::string> examples;
    for (std::sregex_iterator it(page.begin(), page.end(), row), end; it != end; ++it) {
        examples[(*it)[1]] = (*it)[2];
    }
    return examples;
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
    const std::string name = "vtr_test_page_" + std::to_string(::GetCurrentProcessId());
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
        for (int i = 0; i < 500 && server.served() == 0; ++i) ::Sleep(2);
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
