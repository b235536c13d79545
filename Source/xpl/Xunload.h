#ifndef XPL_XUNLOAD_H
#define XPL_XUNLOAD_H

#include <utility>

// Singletons. They are not destroyed at process exit, where threads may still use them, but are
// released when a host unloads the library.

// Registers an object for release at unload, in reverse order of registration. When out of memory,
// the object is never released.
void xunloadRemember(void* object, void (*release)(void* object)) noexcept;

// Creates an object that lives until unload. Never null.
template <typename Object, typename... Arguments>
Object* xunloadKeep(Arguments&&... arguments) {
    auto* const object = new Object(std::forward<Arguments>(arguments)...);
    xunloadRemember(object, [](void* kept) { delete static_cast<Object*>(kept); });
    return object;
}

// Releases all registered objects; called by the only static destructor. Does nothing at process
// exit, or when linked into a program.
void xunloadRelease() noexcept;

#endif
