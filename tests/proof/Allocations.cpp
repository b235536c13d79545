#include "Allocations.h"
#include "support/TestHeaders.h"

namespace {

struct State {
    bool active = false;
    Shortage kind = Shortage::Once;
    int left = 0;
    bool failed = false;
};
thread_local State state;
std::atomic<int> refused;

bool fails() {
    if (!state.active) return false;
    const int left = state.left--;
    const bool now = state.kind == Shortage::Once ? left == 0 : left <= 0;
    state.failed = state.failed || now;
    if (now) ++refused;
    return now;
}

}  // namespace

void startShortage(Shortage kind, int first) { state = {true, kind, first, false}; }

bool endShortage() {
    state.active = false;
    return state.failed;
}

int refusedAllocations() { return refused; }

// The linker redirects malloc and calloc here.
extern "C" {
void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void* __wrap_malloc(std::size_t size);
void* __wrap_calloc(std::size_t count, std::size_t size);
void free(void* memory);

void* __wrap_malloc(std::size_t size) { return fails() ? nullptr : __real_malloc(size); }
void* __wrap_calloc(std::size_t count, std::size_t size) {
    return fails() ? nullptr : __real_calloc(count, size);
}
}

void* allocateInShortage(std::size_t size) { return __wrap_malloc(size); }

void* operator new(std::size_t size) {
    void* const memory = fails() ? nullptr : __real_malloc(size == 0 ? 1 : size);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return fails() ? nullptr : __real_malloc(size == 0 ? 1 : size);
}
void* operator new[](std::size_t size) { return ::operator new(size); }
void* operator new[](std::size_t size, const std::nothrow_t& tag) noexcept {
    return ::operator new(size, tag);
}
void operator delete(void* memory) noexcept { free(memory); }
void operator delete(void* memory, std::size_t) noexcept { free(memory); }
void operator delete[](void* memory) noexcept { free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { free(memory); }
