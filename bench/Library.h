#ifndef BENCH_LIBRARY_H
#define BENCH_LIBRARY_H

#include <bridge/bridge.h>

#include "SampleConf.h"

// The library as its host sees it, once, initialised over a configuration of 1,000 instances.
class Library {
 public:
    static constexpr int kInstances = 1000;

    static const Library& get();

    const KeyValues& values() const { return values_; }

    decltype(&bridgeConfGetBool) getBool = nullptr;
    decltype(&bridgeConfGetI32) getI32 = nullptr;
    decltype(&bridgeConfGetString) getString = nullptr;
    decltype(&bridgeConfGetMultiString) getMultiString = nullptr;
    decltype(&bridgeConfSetBool) setBool = nullptr;
    decltype(&bridgeConfSetI32) setI32 = nullptr;
    decltype(&bridgeConfSetString) setString = nullptr;
    decltype(&bridgeConfSetMultiString) setMultiString = nullptr;
    decltype(&bridgeFreeMemory) freeMemory = nullptr;

 private:
    Library();

    KeyValues values_;
    TempFolder folder_;
};

#endif
