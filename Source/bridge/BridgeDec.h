#ifndef BRIDGE_BRIDGEDEC_H
#define BRIDGE_BRIDGEDEC_H

#include <cstdint>

class QLocalSocket;

// Decodes an event packet and calls its invoker: the event server's decode function. True for a
// known event that was dispatched; false, after one error line, for a length below 8, an opcode
// that no event has, and fields that do not lie inside the packet. Bytes after the fields are
// ignored. Uses nothing but the packet: the socket and the reply stay as they are.
bool bridgeDecode(QLocalSocket* socket, const std::uint8_t* buffer, std::int32_t length,
                  void* reply, std::int32_t replyLength);

#endif
