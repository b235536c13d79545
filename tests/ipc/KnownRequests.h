#ifndef TESTS_IPC_KNOWNREQUESTS_H
#define TESTS_IPC_KNOWNREQUESTS_H

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "ipc/IpcClient.h"
#include "support/EventPackets.h"

// The requests of the protocol, written down without the library's tables. Values are words:
// numbers, 0 or 1 for a bool, and texts.
struct KnownRequest {
    std::uint32_t opcode;
    std::string name;    // of the encoder: "plrShutdownRpc"
    std::string fields;  // b bool, i 32-bit number, d double, t text
    std::function<void(IpcClient&, const Words&)> encode;

    std::uint32_t replyLength() const { return opcode == 2001 ? 8 : 0; }
};

// In the order of the opcodes.
const std::vector<KnownRequest>& knownRequests();

// The request with this name; there must be one.
const KnownRequest& knownRequest(const std::string& name);

// The packet that the protocol requires.
std::string requestPacket(const KnownRequest& request, const Words& values);

// The server that sentBytes() runs.
std::string requestServer();

// Encodes the request, and returns the bytes that a server receives. It replies 0x0102030405060708
// if the request has a reply.
std::string sentBytes(const KnownRequest& request, const Words& values);

#endif
