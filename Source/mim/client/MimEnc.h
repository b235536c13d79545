#ifndef MIM_MIMENC_H
#define MIM_MIMENC_H

#include <cstddef>

#include "ipc/IpcClient.h"
#include "ipc/IpcRequest.h"

// Requests to the multi-instance manager. Each takes a client for its server ("vtr_mim_nvo") and
// sends one packet. Failures are only logged. Strings are UTF-8. The receiver defines the meaning
// of unnamed parameters.

// Every request, in the order of the opcodes.
constexpr std::size_t MIM_REQUEST_COUNT = 4;
extern const IpcRequest MIM_REQUESTS[MIM_REQUEST_COUNT];

void mimShutdownRpc(IpcClient& client);
void mimBringToFrontRpc(IpcClient& client);
void mimDownloadImageRpc(IpcClient& client, const char* imageName);
void mimCreateFreshInstanceRpc(IpcClient& client, const char* imageName, const char* cpu,
                               const char* ram, const char* graphicEngine,
                               const char* graphicRenderer, const char* deviceProfile);

#endif
