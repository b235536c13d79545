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

// The common part of both stand-ins.
//
// A program started without a window has no visible output, so a stand-in appends its lines to a
// file: $QX_STANDIN_OUTPUT, or "<program>.output.txt" in its folder. With $QX_STANDIN_FORMAT=json
// each line is a JSON object. Its script is $QX_STANDIN_SCRIPT, or "<program>.script" in its folder
// if that exists. It ends at the shutdown request, or after $QX_STANDIN_SECONDS (default: 20)
// without a request. It sends events to the front ends whose client ids are in $QX_STANDIN_CLIENTS
// ("none": to no front end), by default to all ids that the library accepts.
class Standin {
 public:
    // Exit statuses of the programs.
    static constexpr int kDone = 0;
    static constexpr int kMisuse = 2;
    static constexpr int kNobody = 3;  // no front end accepted the event

    // Reads the command line of this process and the script. False if the script has an error,
    // which the output names.
    bool start();

    const std::vector<std::string>& arguments() const { return arguments_; }

    // Appends a line: "member: text", or a JSON object with this one member.
    void say(const char* member, const std::string& text);

    // Handles the options that need no server, "--event", "--script" and "--help", and returns the
    // exit status. Empty if none is given.
    std::optional<int> runOption();

    // Serves until the shutdown request, and sends the events of the script and of the command
    // line. If another stand-in has the name, only sends the events of the command line.
    void serve(const std::string& serverName, StandinRequests requests);

 private:
    int sendEvent(const std::vector<std::string>& words);
    int replay(const std::string& path);
    StandinSending sending();

    // The steps of the script for a command or request, or these events by default.
    StandinSteps stepsFor(std::string_view command,
                          const std::vector<StandinEvent>& otherwise) const;
    StandinSteps stepsForRequest(std::string_view packet, StandinRequests requests) const;
    void append(const std::string& lines);

    std::vector<std::string> arguments_;
    std::string outputPath_;
    XmutexNamed outputLock_;  // several stand-ins and threads may share the file
    StandinFormat format_ = StandinFormat::Text;
    StandinScript script_;
    std::vector<std::string> clients_;
    int idleSeconds_ = 20;
};

#endif
