#ifndef TESTS_MALFORMEDPACKETS_H
#define TESTS_MALFORMEDPACKETS_H

#include <string>
#include <vector>

#include "support/EventPackets.h"

// Event packets made from the table of their fields, most of them malformed.

// A valid packet of an event. Each text and number has its offset in it.
std::string validPacket(const KnownEvent& event);

// Hundreds of packets: the lengths of texts too small, too large and at the limits of 32 bits;
// texts without a NUL; every truncation; bytes after the last field; unknown opcodes. Last come
// those that are shorter than a header, which cannot be sent.
std::vector<std::string> malformedPackets();

// A packet as read without the library: the host's calls, as HostCalls.h writes them, or the error
// line.
struct Reading {
    std::vector<std::string> calls;
    std::string error;
};
Reading referenceReading(const std::string& packet);

#endif
