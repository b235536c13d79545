#ifndef BRIDGE_BRIDGEMEMORY_H
#define BRIDGE_BRIDGEMEMORY_H

#include <string_view>

// Copies a text for the host, which frees it with bridgeFreeMemory. Uses malloc and free of this
// library's C runtime, which may not be the host's. Never returns null: throws std::bad_alloc,
// which bridgeCatchAll logs, so that no export returns null without a log line.
char* bridgeHostCopy(std::string_view text);
void bridgeHostFree(void* memory) noexcept;

#endif
