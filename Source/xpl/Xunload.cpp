#include "xpl/Xunload.h"

#include <atomic>
#include <new>

#include "xpl/Xsystem.h"

namespace {

struct Kept {
    void* object;
    void (*release)(void* object);
    Kept* before;
};

std::atomic<Kept*> last{nullptr};

}  // namespace

void xunloadRemember(void* object, void (*release)(void* object)) noexcept {
    auto* const kept = new (std::nothrow) Kept{object, release, last};
    if (kept == nullptr) return;
    while (!last.compare_exchange_weak(kept->before, kept)) {
    }
}

void xunloadRelease() noexcept {
    if (!xsystemIsUnloading()) return;
    for (Kept* kept = last.exchange(nullptr); kept != nullptr;) {
        kept->release(kept->object);
        Kept* const before = kept->before;
        delete kept;
        kept = before;
    }
}
