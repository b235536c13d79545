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

// How a stand-in answers and misbehaves, and which events it sends. A script has a line for each
// wish, words apart by blanks; a word with blanks or "#" stands between double quotes, inside which
// a backslash comes before every double quote and every backslash, and "\n" is a line feed. "#"
// starts a comment:
//
//     reply 0100000000000000   bytes of the reply, in hexadecimal (default: the number 1)
//     delay 500                milliseconds before a reply
//     split 3                  the reply in two writes, the first of this many bytes
//     short 3                  only this many bytes of the reply
//     garbage 20               this many bytes more behind the reply
//     close-early              closes the connection instead of replying
//     never-read               takes connections and never reads them
//     quit-after 2             ends the program after this many requests
//
//     event NAME ARGUMENT...   sends an event, once the program serves
//     event-flood 1000 NAME ARGUMENT...   sends so many, "{n}" being the number of each
//     pause 500                milliseconds before the next event
//     on CMD ...               one of these three, when that command or request comes
//     event-split 3            each event in two writes, the first of this many bytes
//     event-garbage 20         this many bytes more behind each event
//     event-close-early        closes the connection in the middle of each event

// Something that a stand-in does on its own: it waits, and sends events.
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

// Nothing, and the reason in `error`, for a line that is not understood.
std::optional<StandinScript> standinParseScript(std::string_view text, std::string& error);

// The bytes that a request for `length` bytes of reply gets.
std::string standinReply(const StandinScript& script, std::size_t length);

#endif
