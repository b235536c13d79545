#include "Standin.h"

#include <nlohmann/json.hpp>

#include "StandinCommandLine.h"
#include "StandinServer.h"
#include "xpl/Xfile.h"
#include "xpl/Xtext.h"
#include "xpl/XwindowsLean.h"

namespace {

std::string environment(const wchar_t* name) {
    wchar_t value[1024];
    const DWORD length = ::GetEnvironmentVariableW(name, value, 1024);
    return length < 1024 ? xtextToUtf8({value, length}) : std::string();
}

// Path of this program without ".exe".
std::string ownStem() {
    wchar_t path[1024];
    const DWORD length = ::GetModuleFileNameW(nullptr, path, 1024);
    const std::string text = xtextToUtf8({path, length});
    return text.substr(0, text.rfind('.'));
}

std::string readText(const std::string& path) {
    Xfile file;
    std::int64_t size = 0;
    std::size_t done = 0;
    if (xfileOpen(file, path, XfileMode::Read) != XERR_SUCCESS) return {};
    if (xfileSize(file, size) != XERR_SUCCESS) return {};
    std::string text(static_cast<std::size_t>(size), '\0');
    return xfileReadAll(file, text.data(), text.size(), done) == XERR_SUCCESS ? text
                                                                              : std::string();
}

bool isShutdown(std::string_view packet, StandinRequests requests) {
    // The first request of each program is its shutdown.
    return packet.size() >= IPC_HEADER_SIZE &&
           standinHeader(packet).opcode == requests.first[0].opcode;
}

}  // namespace

bool Standin::start() {
    arguments_ = standinSplit(xtextToUtf8(::GetCommandLineW()));
    const std::string output = environment(L"QX_STANDIN_OUTPUT");
    outputPath_ = output.empty() ? ownStem() + ".output.txt" : output;
    if (environment(L"QX_STANDIN_FORMAT") == "json") format_ = StandinFormat::Json;
    const std::string seconds = environment(L"QX_STANDIN_SECONDS");
    if (!seconds.empty()) idleSeconds_ = std::atoi(seconds.c_str());
    const std::string scriptPath = environment(L"QX_STANDIN_SCRIPT");
    std::string error;
    const auto script = standinParseScript(
        readText(scriptPath.empty() ? ownStem() + ".script" : scriptPath), error);
    if (!script) {
        say("error", "script " + error);
        return false;
    }
    script_ = *script;
    say("commandLine", xtextToUtf8(::GetCommandLineW()));
    return true;
}

void Standin::say(const char* member, const std::string& text) {
    const nlohmann::ordered_json json{{member, text}};
    append(format_ == StandinFormat::Json
               ? json.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace)
               : std::string(member) + ": " + text);
}

void Standin::append(const std::string& line) {
    const std::string text = line + "\n";
    Xfile file;
    std::size_t done = 0;
    if (xfileOpen(file, outputPath_, XfileMode::Append) != XERR_SUCCESS) return;
    static_cast<void>(xfileWriteAll(file, text.data(), text.size(), done));
}

void Standin::serve(const std::string& serverName, StandinRequests requests) {
    if (standinIsServed(serverName)) return;
    say("serving", serverName);
    int count = 0;
    standinServe(serverName, script_, idleSeconds_, [&](std::string_view packet) {
        append(standinDescribe(packet, requests, format_));
        ++count;
        return !isShutdown(packet, requests) && !(script_.quitAfter && count >= *script_.quitAfter);
    });
    say("ended", serverName);
}
