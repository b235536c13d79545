#ifndef STANDINS_STANDIN_H
#define STANDINS_STANDIN_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "StandinDecode.h"
#include "StandinEvents.h"
#include "StandinScript.h"
#include "StandinSender.h"
#include "xpl/XmutexNamed.h"

// What both stand-ins share: where they write, how they are scripted, and how they run.
//
// A program that is started without a window prints nowhere, so a stand-in appends its lines to a
// file: $QX_STANDIN_OUTPUT, or "<program>.output.txt" beside it. $QX_STANDIN_FORMAT=json makes each
// line a JSON object. Its script is $QX_STANDIN_SCRIPT, or "<program>.script" beside it, if there
// is one. It ends with the shutdown request, or after $QX_STANDIN_SECONDS (20) without a request.
// Its events go to the front ends whose client ids $QX_STANDIN_CLIENTS lists ("none": to nobody),
// or to all that the library knows.
class Standin {
 public:
    // Exit statuses of the programs.
    static constexpr int kDone = 0;
    static constexpr int kMisuse = 2;
    static constexpr int kNobody = 3;  // no front end took the event

    // Takes the command line of this process; false when the script is not understood, which the
    // output says.
    bool start();

    const std::vector<std::string>& arguments() const { return arguments_; }

    // Appends a line: the text, or the same as a JSON object with this one member.
    void say(const char* member, const std::string& text);

    // What the options ask for that need no server, "--event", "--script" and "--help", and the
    // exit status; nothing when there is none of them.
    std::optional<int> runOption();

    // Serves until the shutdown request, and sends the events of the script and of the command
    // line. Only these of the command line when another stand-in serves the name.
    void serve(const std::string& serverName, StandinRequests requests);

 private:
    int sendEvent(const std::vector<std::string>& words);
    int replay(const std::string& path);
    StandinSending sending();

    // What the script has for a command or request; else these events.
    StandinSteps stepsFor(std::string_view command,
                          const std::vector<StandinEvent>& otherwise) const;
    StandinSteps stepsForRequest(std::string_view packet, StandinRequests requests) const;
    void append(const std::string& lines);

    std::vector<std::string> arguments_;
    std::string outputPath_;
    XmutexNamed outputLock_;  // several stand-ins, and threads, may write into one file
    StandinFormat format_ = StandinFormat::Text;
    StandinScript script_;
    std::vector<std::string> clients_;
    int idleSeconds_ = 20;
};

#endif
