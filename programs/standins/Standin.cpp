#include "Standin.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <string_view>
#include <thread>
#include <utility>

#include "StandinCommandLine.h"
#include "StandinDefaults.h"
#include "StandinEvents.h"
#include "StandinPipe.h"
#include "StandinServer.h"
#include "ipc/IpcRequest.h"
#include "shared/JsonValue.h"
#include "xpl/Xerr.h"
#include "xpl/Xfile.h"
#include "xpl/Xtext.h"
#include "xpl/XwindowsLean.h"

// Last: it needs <windows.h>.
#include <shellapi.h>

namespace {

struct FreeArguments {
    void operator()(LPWSTR* memory) const noexcept { ::LocalFree(memory); }
};

// The command line split by the common rules. The product quotes differently.
std::vector<std::string> commonArguments() {
    int count = 0;
    const std::unique_ptr<LPWSTR[], FreeArguments> wide(
        ::CommandLineToArgvW(::GetCommandLineW(), &count));
    std::vector<std::string> arguments;
    for (int i = 0; i < count; ++i) {
        arguments.push_back(xtextToUtf8(wide[static_cast<std::size_t>(i)]));
    }
    return arguments;
}

void printOut(const std::string& text) {
    DWORD written = 0;
    ::WriteFile(::GetStdHandle(STD_OUTPUT_HANDLE), text.data(), static_cast<DWORD>(text.size()),
                &written, nullptr);
}

std::string help(const std::string& program) {
    return "Stand in for a program of the product\n\n"
           "Usage: " +
           program +
           " PRODUCT-ARGUMENT...\n"
           "       " +
           program +
           " --event NAME [ARGUMENT...]\n"
           "       " +
           program +
           " --script FILE\n\n"
           "With the product's arguments, it serves requests and sends events as the product "
           "does.\n\n"
           "Options:\n"
           "  --event NAME [ARGUMENT...]  Send an event to the front ends and end\n"
           "  --script FILE               Send the events of a script and end\n"
           "  --help                      Print this help\n\n"
           "Examples:\n"
           "  " +
           program +
           " --event app-displayed Nougat64 com.example.app\n"
           "  " +
           program +
           " --script trace.script\n\n"
           "Events and their arguments:\n" +
           standinEventHelp() +
           "\nEnvironment variables:\n"
           "  QX_STANDIN_OUTPUT   File for a line per request and event\n"
           "  QX_STANDIN_FORMAT   json: each line is a JSON object\n"
           "  QX_STANDIN_SCRIPT   Script with replies, events and misbehaviour\n"
           "  QX_STANDIN_SECONDS  End after this many seconds without a request (default: 20)\n"
           "  QX_STANDIN_CLIENTS  Client ids of the front ends, separated by commas, or none\n"
           "\nExit codes:\n"
           "   0  done; with --event or --script: a front end took every event\n"
           "   2  the command line or the script is not understood; the output file has the error\n"
           "   3  no front end took an event\n";
}

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

// The first request of each program is its shutdown.
bool isShutdown(std::string_view packet, StandinRequests requests) {
    return standinFindRequest(packet, requests) == requests.first;
}

}  // namespace

bool Standin::start() {
    if (outputLock_.init("Local\\qx_standin_output") != 0) return false;
    arguments_ = standinSplit(xtextToUtf8(::GetCommandLineW()));
    const std::string output = environment(L"QX_STANDIN_OUTPUT");
    outputPath_ = output.empty() ? ownStem() + ".output.txt" : output;
    if (environment(L"QX_STANDIN_FORMAT") == "json") format_ = StandinFormat::Json;
    const std::string seconds = environment(L"QX_STANDIN_SECONDS");
    if (!seconds.empty()) idleSeconds_ = std::atoi(seconds.c_str());
    const std::string clients = environment(L"QX_STANDIN_CLIENTS");
    clients_ = clients.empty() ? standinKnownClients() : standinParseClients(clients);
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
    append((format_ == StandinFormat::Json ? JsonValue(JsonObject{{member, text}}).inOneLine()
                                           : std::string(member) + ": " + text) +
           "\n");
}

void Standin::append(const std::string& lines) {
    const std::lock_guard<XmutexNamed> guard(outputLock_);
    Xfile file;
    std::size_t done = 0;
    if (xfileOpen(file, outputPath_, XfileMode::Append) != XERR_SUCCESS) return;
    static_cast<void>(xfileWriteAll(file, lines.data(), lines.size(), done));
}

std::optional<int> Standin::runOption() {
    const std::vector<std::string> arguments = commonArguments();
    if (arguments.size() < 2) return std::nullopt;
    if (arguments[1] == "--event") return sendEvent({arguments.begin() + 2, arguments.end()});
    if (arguments[1] == "--script") return replay(arguments.size() > 2 ? arguments[2] : "");
    if (arguments[1] != "--help") return std::nullopt;
    const std::string program = ownStem();
    printOut(help(program.substr(program.find_last_of("\\/") + 1) + ".exe"));
    return kDone;
}

int Standin::sendEvent(const std::vector<std::string>& words) {
    std::string error;
    const auto event = standinParseEvent(words, error);
    if (!event) {
        say("error", error);
        return kMisuse;
    }
    return standinSend(sending(), {*event}) > 0 ? kDone : kNobody;
}

int Standin::replay(const std::string& path) {
    if (xfileExists(path) != XERR_SUCCESS) {
        say("error", "no such script: " + path);
        return kMisuse;
    }
    std::string error;
    const auto script = standinParseScript(readText(path), error);
    if (!script) {
        say("error", "script " + error);
        return kMisuse;
    }
    script_ = *script;
    bool isTaken = true;
    for (const StandinStep& step : script_.atStart) {
        std::this_thread::sleep_for(std::chrono::milliseconds(step.pauseMs));
        if (!step.events.empty() && standinSend(sending(), step.events) == 0) isTaken = false;
    }
    return isTaken ? kDone : kNobody;
}

StandinSending Standin::sending() {
    return {clients_, script_, format_, [this](const std::string& lines) { append(lines); }};
}

StandinSteps Standin::stepsFor(std::string_view command,
                               const std::vector<StandinEvent>& otherwise) const {
    const auto found = script_.on.find(command);
    return found == script_.on.end() ? StandinSteps{{0, otherwise}} : found->second;
}

StandinSteps Standin::stepsForRequest(std::string_view packet, StandinRequests requests) const {
    const IpcRequest* const request = standinFindRequest(packet, requests);
    return request == nullptr ? StandinSteps() : stepsFor(request->name, {});
}

void Standin::serve(const std::string& serverName, StandinRequests requests) {
    const StandinSteps own =
        stepsFor(standinOption(arguments_, "cmd").value_or(""), standinDefaultEvents(arguments_));
    if (standinIsServed(serverName)) {
        StandinSender(sending()).post(own);
        return;
    }
    StandinPipe pipe = StandinPipe::listen(serverName);
    say("serving", serverName);
    {
        StandinSender sender(sending());
        sender.post(script_.atStart);
        sender.post(own);
        int count = 0;
        standinServe(std::move(pipe), serverName, script_, idleSeconds_,
                     [&](std::string_view packet) {
                         append(standinDescribe(packet, requests, format_) + "\n");
                         ++count;
                         sender.post(stepsForRequest(packet, requests));
                         return !isShutdown(packet, requests) &&
                                !(script_.quitAfter && count >= *script_.quitAfter);
                     });
        sender.hurry();
    }  // the destructor of the sender sends its last events
    say("ended", serverName);
}
