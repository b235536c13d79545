#ifndef XPL_XUNLOAD_H
#define XPL_XUNLOAD_H

#include <utility>

// Objects that are kept once per process. They outlive every thread that may use them at the
// process's end, so nothing destroys them there; a host that unloads the library gets their memory
// and handles back.

// Remembers what is to be released when the library is unloaded, the last one first. Without memory
// to remember it, it is never released.
void xunloadRemember(void* object, void (*release)(void* object)) noexcept;

// Makes an object that lives until then. Never null.
template <typename Object, typename... Arguments>
Object* xunloadKeep(Arguments&&... arguments) {
    auto* const object = new Object(std::forward<Arguments>(arguments)...);
    xunloadRemember(object, [](void* kept) { delete static_cast<Object*>(kept); });
    return object;
}

// Releases everything remembered; for the one object that is destroyed at unload. Does nothing in a
// program that this is linked into, and at a process's end.
void xunloadRelease() noexcept;

#endif
