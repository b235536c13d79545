#ifndef BRIDGE_BRIDGEMEMORY_H
#define BRIDGE_BRIDGEMEMORY_H

#include <string_view>

// A copy that the host owns and gives back to bridgeFreeMemory: malloc and free of this library's C
// runtime, whatever the host's is. Null when memory is short.
char* bridgeHostCopy(std::string_view text) noexcept;
void bridgeHostFree(void* memory) noexcept;

#endif
