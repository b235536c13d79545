#include "EventServer.h"

#include "xpl/Xerr.h"
#include "xpl/Xtext.h"
#include "xpl/XwindowsLean.h"

namespace {

std::wstring pipePath(const std::string& serverName) {
    std::wstring path;
    if (xtextToWide("\\\\.\\pipe\\" + serverName, path) != XERR_SUCCESS) path.clear();
    return path;
}

}  // namespace

EventServerProbe::~EventServerProbe() {
    if (pipe_ != nullptr) ::CloseHandle(pipe_);
}

bool EventServerProbe::connect(const std::string& serverName) {
    const HANDLE pipe =
        ::CreateFileW(pipePath(serverName).c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                      SECURITY_SQOS_PRESENT | SECURITY_IDENTIFICATION, nullptr);
    if (pipe == INVALID_HANDLE_VALUE) return false;
    pipe_ = pipe;
    return true;
}

std::uint32_t EventServerProbe::process() const {
    ULONG process = 0;
    return ::GetNamedPipeServerProcessId(pipe_, &process) ? process : 0;
}

bool EventServerProbe::isOwn() const { return process() == ::GetCurrentProcessId(); }
