#ifndef STANDINS_STANDINDECODE_H
#define STANDINS_STANDINDECODE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "ipc/IpcRequest.h"

// Requests as people and scripts read them.

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

// The first 12 bytes of a packet; they must be there.
StandinHeader standinHeader(std::string_view packet);

// The request that a packet is; null when it is none of these.
const IpcRequest* standinFindRequest(std::string_view packet, StandinRequests requests);

enum class StandinFormat { Text, Json };

// One line, without a line feed, for a whole packet: "plrLaunchAppRpc("com.example.app")" or a JSON
// object with "request", "opcode", "replyLength" and "arguments". A packet that is no request of
// the table, or whose fields do not fit it, is shown with its bytes.
std::string standinDescribe(std::string_view packet, StandinRequests requests,
                            StandinFormat format);

#endif
