// The requests to the multi-instance manager, and their encoders.
#include "mim/client/MimEnc.h"
#include <cstddef>

#include "ipc/IpcClient.h"
#include "ipc/IpcPacket.h"
#include "xpl/Xlog.h"

namespace {

constexpr XlogModule kLog{XlogTag::MIM, "Source/mim/client/MimEnc"};

constexpr IpcFieldType Text = IpcFieldType::Text;

enum Row : std::size_t {
    Shutdown,
    BringToFront,
    DownloadImage,
    CreateFreshInstance,
};

}  // namespace

const IpcRequest MIM_REQUESTS[MIM_REQUEST_COUNT] = {
    {4000, "mimShutdownRpc", 0, 0, {}},
    {4001, "mimBringToFrontRpc", 0, 0, {}},
    {4002, "mimDownloadImageRpc", 0, 1, {Text}},
    {4003, "mimCreateFreshInstanceRpc", 0, 6, {Text, Text, Text, Text, Text, Text}},
};

void mimShutdownRpc(IpcClient& client) { ipcSendRequest(client, kLog, MIM_REQUESTS[Shutdown], {}); }

void mimBringToFrontRpc(IpcClient& client) {
    ipcSendRequest(client, kLog, MIM_REQUESTS[BringToFront], {});
}

void mimDownloadImageRpc(IpcClient& client, const char* imageName) {
    ipcSendRequest(client, kLog, MIM_REQUESTS[DownloadImage], {imageName});
}

void mimCreateFreshInstanceRpc(IpcClient& client, const char* imageName, const char* cpu,
                               const char* ram, const char* graphicEngine,
                               const char* graphicRenderer, const char* deviceProfile) {
    ipcSendRequest(client, kLog, MIM_REQUESTS[CreateFreshInstance],
                   {imageName, cpu, ram, graphicEngine, graphicRenderer, deviceProfile});
}
