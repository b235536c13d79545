#include "EveryEvent.h"

#include <string>

#include "support/EventPackets.h"
#include "support/RawServer.h"

namespace {

// A word of a script.
std::string quoted(const std::string& word) {
    std::string text = "\"";
    for (const char c : word) {
        if (c == '"' || c == '\\') text += '\\';
        text += c;
    }
    return text + "\"";
}

}  // namespace

std::string everyEvent() {
    std::string packets;
    for (const KnownEvent& event : knownEvents()) packets += eventPacket(event, exampleOf(event));
    return packets;
}

std::string everyEventScript() {
    std::string script;
    for (const KnownEvent& event : knownEvents()) {
        script += "event " + event.name;
        for (const std::string& word : exampleOf(event)) script += " " + quoted(word);
        script += "\n";
    }
    return script;
}

Lines everyLine() {
    Lines lines;
    for (const KnownEvent& event : knownEvents()) {
        lines.push_back(hostLine(event, exampleOf(event)));
    }
    return lines;
}

std::string lineOf(const std::string& name) {
    const KnownEvent& event = knownEvent(name);
    return hostLine(event, exampleOf(event));
}

void* connectToHelper() { return connectWhenFree(kHelperServer); }
