#ifndef STANDINS_STANDINSCRIPT_H
#define STANDINS_STANDINSCRIPT_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

// How a stand-in answers and misbehaves. A script has a line for each wish; "#" starts a comment:
//
//     reply 0100000000000000   bytes of the reply, in hexadecimal (default: the number 1)
//     delay 500                milliseconds before a reply
//     split 3                  the reply in two writes, the first of this many bytes
//     short 3                  only this many bytes of the reply
//     garbage 20               this many bytes more behind the reply
//     close-early              closes the connection instead of replying
//     never-read               takes connections and never reads them
//     quit-after 2             ends the program after this many requests
struct StandinScript {
    std::string reply{"\x01\0\0\0\0\0\0\0", 8};
    int delayMs = 0;
    std::optional<std::size_t> split;
    std::optional<std::size_t> cut;
    std::size_t garbage = 0;
    bool closeEarly = false;
    bool neverRead = false;
    std::optional<int> quitAfter;
};

// Nothing, and the reason in `error`, for a line that is not understood.
std::optional<StandinScript> standinParseScript(std::string_view text, std::string& error);

// The bytes that a request for `length` bytes of reply gets.
std::string standinReply(const StandinScript& script, std::size_t length);

#endif
