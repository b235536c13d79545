#include "bridge/BridgeMemory.h"

#include <cstdlib>
#include <cstring>
#include <new>

char* bridgeHostCopy(std::string_view text) {
    char* const copy = static_cast<char*>(std::malloc(text.size() + 1));
    if (copy == nullptr) throw std::bad_alloc();
    std::memcpy(copy, text.data(), text.size());
    copy[text.size()] = '\0';
    return copy;
}

void bridgeHostFree(void* memory) noexcept { std::free(memory); }
