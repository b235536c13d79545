#ifndef STANDINS_STANDINSCRIPT_H
#define STANDINS_STANDINSCRIPT_H

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "StandinEvents.h"

// How a stand-in replies, misbehaves and sends events. A script has a directive per line, with
// words separated by spaces. A word with spaces or "#" is in double quotes, with a backslash before
// every double quote and backslash; "\n" in it is a line feed. "#" starts a comment:
//
//     reply 0100000000000000   bytes of the reply, in hexadecimal (default: the number 1)
//     delay 500                milliseconds before a reply
//     split 3                  the reply in two writes, the first of this many bytes
//     short 3                  only this many bytes of the reply
//     garbage 20               this many extra bytes after the reply
//     close-early              closes the connection instead of replying
//     never-read               accepts connections and never reads from them
//     quit-after 2             ends the program after this many requests
//
//     event NAME ARGUMENT...   sends an event as soon as the program serves
//     event-flood 1000 NAME ARGUMENT...   sends this many; "{n}" is the number of each
//     pause 500                milliseconds before the next event
//     on CMD ...               one of the three above at this command or request
//     event-split 3            each event in two writes, the first of this many bytes
//     event-garbage 20         this many extra bytes after each event
//     event-close-early        closes the connection in the middle of each event

// A step of a script: a pause, then events.
struct StandinStep {
    int pauseMs = 0;
    std::vector<StandinEvent> events;
};
using StandinSteps = std::vector<StandinStep>;

struct StandinScript {
    std::string reply{"\x01\0\0\0\0\0\0\0", 8};
    int delayMs = 0;
    std::optional<std::size_t> split;
    std::optional<std::size_t> cut;
    std::size_t garbage = 0;
    bool closeEarly = false;
    bool neverRead = false;
    std::optional<int> quitAfter;

    StandinSteps atStart;
    std::map<std::string, StandinSteps, std::less<>> on;  // by command word or request name
    std::optional<std::size_t> eventSplit;
    std::size_t eventGarbage = 0;
    bool eventCloseEarly = false;
};

// Empty, with the reason in `error`, if a line is not valid.
std::optional<StandinScript> standinParseScript(std::string_view text, std::string& error);

// The reply to a request that expects `length` bytes.
std::string standinReply(const StandinScript& script, std::size_t length);

#endif
