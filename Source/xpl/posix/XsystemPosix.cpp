// Process-wide services of POSIX.
#include <unistd.h>

#include <clocale>
#include <csignal>

#include "xpl/Xsystem.h"

namespace {

constexpr int kBrokenStatus = 3;  // the low byte of the product's 0x80000003

}  // namespace

std::int32_t xsystemProcessId() noexcept { return ::getpid(); }

std::uint32_t xsystemThreadId() noexcept { return static_cast<std::uint32_t>(::gettid()); }

void xsystemUseUtf8() { std::setlocale(LC_ALL, "C.UTF-8"); }

void xsystemDebugBreak() noexcept {
    std::raise(SIGTRAP);
    ::_exit(kBrokenStatus);
}

bool xsystemProcessEnds() noexcept { return false; }

// This build is never a library.
bool xsystemIsUnloading() noexcept { return false; }
