#include "xpl/Xmem.h"

#include <cstdlib>

void* xmemAlloc(std::size_t size) noexcept { return std::malloc(size); }

void* xmemAllocZeroed(std::size_t size) noexcept { return std::calloc(size, 1); }

void xmemFree(void* memory) noexcept { std::free(memory); }
