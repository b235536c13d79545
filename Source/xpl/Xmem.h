#ifndef XPL_XMEM_H
#define XPL_XMEM_H

#include <cstddef>
#include <memory>

// Allocator of packet buffers: the C runtime's.
void* xmemAlloc(std::size_t size) noexcept;  // null when out of memory
void* xmemAllocZeroed(std::size_t size) noexcept;
void xmemFree(void* memory) noexcept;

struct XmemFree {
    void operator()(void* memory) const noexcept { xmemFree(memory); }
};
using XmemBytes = std::unique_ptr<unsigned char[], XmemFree>;

#endif
