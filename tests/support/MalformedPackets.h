#ifndef TESTS_MALFORMEDPACKETS_H
#define TESTS_MALFORMEDPACKETS_H

#include <string>
#include <vector>

#include "support/EventPackets.h"

// Event packets made from the table of their fields, most of them malformed.

// A valid packet of an event, its texts and numbers told apart by their place.
std::string validPacket(const KnownEvent& event);

// Hundreds: each count of each text too small, too large and at the ends of 32 bits; texts without
// a NUL; each truncation; bytes behind the last field; opcodes that no event has. Those shorter
// than a header cannot travel, and come last.
std::vector<std::string> malformedPackets();

// What a reader that is written without the library makes of a packet: the host's calls, as
// HostCalls.h writes them, or the one error line.
struct Reading {
    std::vector<std::string> calls;
    std::string error;
};
Reading referenceReading(const std::string& packet);

#endif
