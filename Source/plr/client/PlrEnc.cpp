// The requests to the player of an instance, and their encoders.
#include "plr/client/PlrEnc.h"
#include <cstddef>

#include "ipc/IpcClient.h"
#include "ipc/IpcPacket.h"
#include "xpl/Xlog.h"

namespace {

constexpr XlogModule kLog{XlogTag::PLR, "Source/plr/client/PlrEnc"};

constexpr IpcFieldType I32 = IpcFieldType::I32;
constexpr IpcFieldType Bool = IpcFieldType::Bool;
constexpr IpcFieldType Double = IpcFieldType::Double;
constexpr IpcFieldType Text = IpcFieldType::Text;

enum Row : std::size_t {
    Shutdown,
    BringToFront,
    EnableEcoMode,
    MuteMedia,
    ResizeWindow,
    LaunchAppStore,
    LaunchApp,
    LaunchUrl,
    UninstallApp,
    InstallApk,
    MnsSyncKeyEvent,
    MnsSyncMouseEvent,
    MnsSyncImeEvent,
    MnsSyncUiEvent,
    MnsSyncStart,
    MnsSyncStop,
    OnConfChanged,
    MnsOnAnyMacroChanged,
};

}  // namespace

const IpcRequest PLR_REQUESTS[PLR_REQUEST_COUNT] = {
    {2000, "plrShutdownRpc", 0, 1, {Bool}},
    {2001, "plrBringToFrontRpc", 8, 0, {}},
    {2002, "plrEnableEcoModeRpc", 0, 1, {Bool}},
    {2003, "plrMuteMediaRpc", 0, 1, {Bool}},
    {2004, "plrResizeWindowRpc", 0, 4, {I32, I32, I32, I32}},
    {2005, "plrLaunchAppStoreRpc", 0, 2, {Text, Text}},
    {2006, "plrLaunchAppRpc", 0, 1, {Text}},
    {2007, "plrLaunchUrlRpc", 0, 1, {Text}},
    {2008, "plrUninstallAppRpc", 0, 1, {Text}},
    {2009, "plrInstallApkRpc", 0, 1, {Text}},
    {2010, "plrMnsSyncKeyEventRpc", 0, 2, {I32, Bool}},
    {2011, "plrMnsSyncMouseEventRpc", 0, 4, {I32, Double, Double, I32}},
    {2012, "plrMnsSyncImeEventRpc", 0, 1, {Text}},
    {2013, "plrMnsSyncUiEventRpc", 0, 1, {I32}},
    {2014, "plrMnsSyncStartRpc", 0, 2, {Text, Text}},
    {2015, "plrMnsSyncStopRpc", 0, 1, {Text}},
    {2016, "plrOnConfChangedRpc", 0, 0, {}},
    {2017, "plrMnsOnAnyMacroChangedRpc", 0, 0, {}},
};

void plrShutdownRpc(IpcClient& client, bool flag) {
    ipcSendRequest(client, kLog, PLR_REQUESTS[Shutdown], {flag});
}

std::uint64_t plrBringToFrontRpc(IpcClient& client) {
    return ipcCallRequest(client, kLog, PLR_REQUESTS[BringToFront]);
}

void plrEnableEcoModeRpc(IpcClient& client, bool enable) {
    ipcSendRequest(client, kLog, PLR_REQUESTS[EnableEcoMode], {enable});
}

void plrMuteMediaRpc(IpcClient& client, bool mute) {
    ipcSendRequest(client, kLog, PLR_REQUESTS[MuteMedia], {mute});
}

void plrResizeWindowRpc(IpcClient& client, std::int32_t first, std::int32_t second,
                        std::int32_t third, std::int32_t fourth) {
    ipcSendRequest(client, kLog, PLR_REQUESTS[ResizeWindow], {first, second, third, fourth});
}

void plrLaunchAppStoreRpc(IpcClient& client, const char* first, const char* second) {
    ipcSendRequest(client, kLog, PLR_REQUESTS[LaunchAppStore], {first, second});
}

void plrLaunchAppRpc(IpcClient& client, const char* package) {
    ipcSendRequest(client, kLog, PLR_REQUESTS[LaunchApp], {package});
}

void plrLaunchUrlRpc(IpcClient& client, const char* url) {
    ipcSendRequest(client, kLog, PLR_REQUESTS[LaunchUrl], {url});
}

void plrUninstallAppRpc(IpcClient& client, const char* package) {
    ipcSendRequest(client, kLog, PLR_REQUESTS[UninstallApp], {package});
}

void plrInstallApkRpc(IpcClient& client, const char* apkFilePath) {
    ipcSendRequest(client, kLog, PLR_REQUESTS[InstallApk], {apkFilePath});
}

void plrMnsSyncKeyEventRpc(IpcClient& client, std::int32_t first, bool second) {
    ipcSendRequest(client, kLog, PLR_REQUESTS[MnsSyncKeyEvent], {first, second});
}

void plrMnsSyncMouseEventRpc(IpcClient& client, std::int32_t first, double second, double third,
                             std::int32_t fourth) {
    ipcSendRequest(client, kLog, PLR_REQUESTS[MnsSyncMouseEvent], {first, second, third, fourth});
}

void plrMnsSyncImeEventRpc(IpcClient& client, const char* text) {
    ipcSendRequest(client, kLog, PLR_REQUESTS[MnsSyncImeEvent], {text});
}

void plrMnsSyncUiEventRpc(IpcClient& client, std::int32_t event) {
    ipcSendRequest(client, kLog, PLR_REQUESTS[MnsSyncUiEvent], {event});
}

void plrMnsSyncStartRpc(IpcClient& client, const char* first, const char* second) {
    ipcSendRequest(client, kLog, PLR_REQUESTS[MnsSyncStart], {first, second});
}

void plrMnsSyncStopRpc(IpcClient& client, const char* text) {
    ipcSendRequest(client, kLog, PLR_REQUESTS[MnsSyncStop], {text});
}

void plrOnConfChangedRpc(IpcClient& client) {
    ipcSendRequest(client, kLog, PLR_REQUESTS[OnConfChanged], {});
}

void plrMnsOnAnyMacroChangedRpc(IpcClient& client) {
    ipcSendRequest(client, kLog, PLR_REQUESTS[MnsOnAnyMacroChanged], {});
}
