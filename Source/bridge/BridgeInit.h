#ifndef BRIDGE_BRIDGEINIT_H
#define BRIDGE_BRIDGEINIT_H

#include <cstdint>

#include "xpl/Xerr.h"

// Implements the exports of the same names. The functions need these names because log lines show
// them; the namespace separates them from the exports. Namespace `bridge` belongs to the C++
// wrapper.
namespace internal {

[[nodiscard]] XErr bridgeApiInitEx(const char* clientId, bool noConfFile, std::int64_t reserved,
                                   const char* logFilePath);

// The client id of the last initialisation, as the host's pointer; null before the first.
const char* clientId() noexcept;

}  // namespace internal

#endif
