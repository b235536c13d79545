#ifndef PLR_PLRENC_H
#define PLR_PLRENC_H

#include <cstddef>
#include <cstdint>

#include "ipc/IpcClient.h"
#include "ipc/IpcRequest.h"

// Requests to the player of an instance. Each takes a client for its server
// ("vtr_plr_<instance>_nvo") and sends one packet. Failures are only logged. Strings are UTF-8. The
// receiver defines the meaning of unnamed parameters.

// Every request, in the order of the opcodes.
constexpr std::size_t PLR_REQUEST_COUNT = 18;
extern const IpcRequest PLR_REQUESTS[PLR_REQUEST_COUNT];

void plrShutdownRpc(IpcClient& client, bool flag);
// Waits for the player's reply, an unsigned 64-bit number. Returns 0 without a reply.
std::uint64_t plrBringToFrontRpc(IpcClient& client);
void plrEnableEcoModeRpc(IpcClient& client, bool enable);
void plrMuteMediaRpc(IpcClient& client, bool mute);
void plrResizeWindowRpc(IpcClient& client, std::int32_t first, std::int32_t second,
                        std::int32_t third, std::int32_t fourth);
void plrLaunchAppStoreRpc(IpcClient& client, const char* first, const char* second);
void plrLaunchAppRpc(IpcClient& client, const char* package);
void plrLaunchUrlRpc(IpcClient& client, const char* url);
void plrUninstallAppRpc(IpcClient& client, const char* package);
void plrInstallApkRpc(IpcClient& client, const char* apkFilePath);
void plrMnsSyncKeyEventRpc(IpcClient& client, std::int32_t first, bool second);
void plrMnsSyncMouseEventRpc(IpcClient& client, std::int32_t first, double second, double third,
                             std::int32_t fourth);
void plrMnsSyncImeEventRpc(IpcClient& client, const char* text);
void plrMnsSyncUiEventRpc(IpcClient& client, std::int32_t event);
void plrMnsSyncStartRpc(IpcClient& client, const char* first, const char* second);
void plrMnsSyncStopRpc(IpcClient& client, const char* text);
void plrOnConfChangedRpc(IpcClient& client);
void plrMnsOnAnyMacroChangedRpc(IpcClient& client);

#endif
