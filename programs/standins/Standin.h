#ifndef STANDINS_STANDIN_H
#define STANDINS_STANDIN_H

#include <string>
#include <vector>

#include "StandinDecode.h"
#include "StandinScript.h"

// What both stand-ins share: where they write, how they are scripted, and how they run.
//
// A program that is started without a window prints nowhere, so a stand-in appends its lines to a
// file: $QX_STANDIN_OUTPUT, or "<program>.output.txt" beside it. $QX_STANDIN_FORMAT=json makes each
// line a JSON object. Its script is $QX_STANDIN_SCRIPT, or "<program>.script" beside it, if there
// is one. It ends with the shutdown request, or after $QX_STANDIN_SECONDS (20) without a request.
class Standin {
 public:
    // Takes the command line of this process; false when the script is not understood, which the
    // output says.
    bool start();

    const std::vector<std::string>& arguments() const { return arguments_; }

    // Appends a line: the text, or the same as a JSON object with this one member.
    void say(const char* member, const std::string& text);

    // Serves until the shutdown request; does nothing when another stand-in serves the name.
    void serve(const std::string& serverName, StandinRequests requests);

 private:
    void append(const std::string& line);

    std::vector<std::string> arguments_;
    std::string outputPath_;
    StandinFormat format_ = StandinFormat::Text;
    StandinScript script_;
    int idleSeconds_ = 20;
};

#endif
