#ifndef BRIDGE_BRIDGEMEMORY_H
#define BRIDGE_BRIDGEMEMORY_H

#include <string_view>

// A copy that the host owns and gives back to bridgeFreeMemory: malloc and free of this library's C
// runtime, whatever the host's is. Never null: when memory is short it throws std::bad_alloc, which
// bridgeCatchAll logs, so that no export answers null without a line.
char* bridgeHostCopy(std::string_view text);
void bridgeHostFree(void* memory) noexcept;

#endif
