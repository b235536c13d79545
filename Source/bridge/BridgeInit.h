#ifndef BRIDGE_BRIDGEINIT_H
#define BRIDGE_BRIDGEINIT_H

#include <cstdint>

#include "xpl/Xerr.h"

// What the exports of the same names do. The namespace keeps the names, which log lines carry,
// apart from the exported ones; `bridge` is that of the C++ wrapper.
namespace internal {

[[nodiscard]] XErr bridgeApiInitEx(const char* clientId, bool noConfFile, std::int64_t reserved,
                                   const char* logFilePath);

// The client id of the last initialisation, the host's own text; null before the first.
const char* clientId() noexcept;

}  // namespace internal

#endif
