#ifndef STANDINS_STANDINDECODE_H
#define STANDINS_STANDINDECODE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "ipc/IpcRequest.h"

// Requests in a readable form.

struct StandinRequests {
    const IpcRequest* first;
    std::size_t count;
};
StandinRequests standinPlayerRequests();
StandinRequests standinManagerRequests();

struct StandinHeader {
    std::uint32_t opcode;
    std::uint32_t length;
    std::uint32_t replyLength;
};

// The first 12 bytes of a packet, which must have them.
StandinHeader standinHeader(std::string_view packet);

// The request of a packet, or null.
const IpcRequest* standinFindRequest(std::string_view packet, StandinRequests requests);

enum class StandinFormat { Text, Json };

// A packet in one line without a line feed: "plrLaunchAppRpc("com.example.app")", or a JSON object
// with "request", "opcode", "replyLength" and "arguments". An unknown request, or one whose fields
// do not match the table, is shown in bytes.
std::string standinDescribe(std::string_view packet, StandinRequests requests,
                            StandinFormat format);

#endif
