#include "xpl/Xmem.h"

#include <cstdlib>
#include <cstring>

void* xmemAlloc(std::size_t size) noexcept { return std::malloc(size); }

void* xmemAllocZeroed(std::size_t size) noexcept { return std::calloc(size, 1); }

void xmemFree(void* memory) noexcept { std::free(memory); }

void xmemCopy(void* to, const void* from, std::size_t size) noexcept {
    std::memcpy(to, from, size);
}

void xmemSet(void* to, int byte, std::size_t size) noexcept { std::memset(to, byte, size); }
