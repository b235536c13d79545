#ifndef BRIDGE_BRIDGEDEC_H
#define BRIDGE_BRIDGEDEC_H

#include <cstdint>

class QLocalSocket;

// The event server's decode function: decodes an event packet and calls its invoker. Returns true
// for a dispatched event. Logs an error and returns false for a length below 8, an unknown opcode,
// or fields that exceed the packet. Ignores bytes after the fields. Does not use the socket or the
// reply.
bool bridgeDecode(QLocalSocket* socket, const std::uint8_t* buffer, std::int32_t length,
                  void* reply, std::int32_t replyLength);

#endif
