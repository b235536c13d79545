#ifndef BRIDGECTL_LIBRARYTEXT_H
#define BRIDGECTL_LIBRARYTEXT_H

#include <bridge/bridge.h>

#include <memory>

struct FreeLibraryText {
    void operator()(char* text) const noexcept { bridgeFreeMemory(text); }
};

// Owns a text that the library returned.
using LibraryText = std::unique_ptr<char, FreeLibraryText>;

#endif
