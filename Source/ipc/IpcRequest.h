#ifndef IPC_IPCREQUEST_H
#define IPC_IPCREQUEST_H

#include <array>
#include <cstddef>
#include <cstdint>

#include "ipc/IpcClient.h"
#include "ipc/IpcPacket.h"
#include "xpl/Xlog.h"

// A request of the protocol.
struct IpcRequest {
    std::uint32_t opcode;
    const char* name;           // of the encoder, for log lines
    std::uint32_t replyLength;  // bytes that the sender waits for; usually 0
    std::size_t fieldCount;
    std::array<IpcFieldType, 6> fields;
};

// Sends a request without reply and disconnects. Logs the call with its arguments, and its end, at
// debug level. A failed send is only logged, at error level. The fields must be those of the
// request's row.
void ipcSendRequest(IpcClient& client, const XlogModule& module, const IpcRequest& request,
                    IpcFields fields);

// Sends a request and reads its reply of 8 bytes. Returns 0 when either fails, which is logged.
std::uint64_t ipcCallRequest(IpcClient& client, const XlogModule& module,
                             const IpcRequest& request);

#endif
