#ifndef BENCH_LIBRARY_H
#define BENCH_LIBRARY_H

#include <bridge/bridge.h>

#include <vector>

#include "SampleConf.h"

// The library as its host sees it, initialised with a configuration of this many instances. Each
// number has its own copy of the library.
class Library {
 public:
    static constexpr int kInstances = 1000;

    static const Library& get(int instances = kInstances);

    // The available numbers of instances.
    static std::vector<int> sizes();

    const KeyValues& values() const { return values_; }

    decltype(&bridgeConfGetBool) getBool = nullptr;
    decltype(&bridgeConfGetI32) getI32 = nullptr;
    decltype(&bridgeConfGetString) getString = nullptr;
    decltype(&bridgeConfGetMultiString) getMultiString = nullptr;
    decltype(&bridgeConfSetBool) setBool = nullptr;
    decltype(&bridgeConfSetI32) setI32 = nullptr;
    decltype(&bridgeConfSetString) setString = nullptr;
    decltype(&bridgeConfSetMultiString) setMultiString = nullptr;
    decltype(&bridgeConfCommit) commit = nullptr;
    decltype(&bridgeFreeMemory) freeMemory = nullptr;

 private:
    explicit Library(int instances);

    KeyValues values_;
    TempFolder folder_;
};

#endif
