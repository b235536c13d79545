#ifndef IPC_IPCREQUEST_H
#define IPC_IPCREQUEST_H

#include <array>
#include <cstddef>
#include <cstdint>

#include "ipc/IpcClient.h"
#include "ipc/IpcPacket.h"
#include "xpl/Xlog.h"

// A request of the protocol: what encoders send and receivers decode.
struct IpcRequest {
    std::uint32_t opcode;
    const char* name;           // the encoder's, which log lines carry
    std::uint32_t replyLength;  // bytes that the sender waits for; mostly none
    std::size_t fieldCount;
    std::array<IpcFieldType, 6> fields;
};

// Sends a request without reply and disconnects. The call and its end are logged at debug level
// with the arguments, a failed send at error level; it is not reported otherwise. The fields are
// those of the request's row.
void ipcSendRequest(IpcClient& client, const XlogModule& module, const IpcRequest& request,
                    IpcFields fields);

// Sends a request and reads its reply of 8 bytes. 0 when either fails, which is logged.
std::uint64_t ipcCallRequest(IpcClient& client, const XlogModule& module,
                             const IpcRequest& request);

#endif
