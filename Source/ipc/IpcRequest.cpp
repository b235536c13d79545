// The steps common to all requests.
#include "ipc/IpcRequest.h"

#include <string>

namespace {

std::string shownList(IpcFields fields) {
    std::string list;
    for (const IpcField& field : fields) {
        if (&field != fields.begin()) list += ", ";
        list += field.shown();
    }
    return list;
}

bool send(IpcClient& client, const XlogModule& module, const IpcRequest& request,
          IpcFields fields) {
    const bool disconnectAfter = request.replyLength == 0;
    const IpcPacket packet = ipcLayOut(request.opcode, request.replyLength, fields);
    // The size of a packet that was built fits into an int.
    const bool sent = packet.bytes != nullptr &&
                      ipcSendToServer(client, packet.bytes.get(), static_cast<int>(packet.size),
                                      disconnectAfter) == 0;
    if (!sent) {
        XLOG_E(module, "%s: ipcSendToServer command failed, opcode = %d", request.name,
               static_cast<int>(request.opcode));
    }
    return sent;
}

}  // namespace

void ipcSendRequest(IpcClient& client, const XlogModule& module, const IpcRequest& request,
                    IpcFields fields) {
    XLOG_D(module, "%s(%s)\n", request.name, shownList(fields).c_str());
    static_cast<void>(send(client, module, request, fields));
    XLOG_D(module, "returning from %s(%s)\n", request.name, shownList(fields).c_str());
}

std::uint64_t ipcCallRequest(IpcClient& client, const XlogModule& module,
                             const IpcRequest& request) {
    XLOG_D(module, "%s()\n", request.name);
    std::uint64_t value = 0;
    if (send(client, module, request, {}) && ipcReadFromServer(client, &value, sizeof value) != 0) {
        XLOG_E(module, "%s: ipcReadFromServer command failed, opcode = %d", request.name,
               static_cast<int>(request.opcode));
        value = 0;
    }
    XLOG_D(module, "returning [%llu] from %s()\n", static_cast<unsigned long long>(value),
           request.name);
    return value;
}
