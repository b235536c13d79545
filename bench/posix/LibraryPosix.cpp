// The exports, which are linked statically.
#include "Bench.h"
#include "Library.h"
#include "support/RegistrySandbox.h"

const Library& Library::get(int instances) {
    benchCheck(instances == kInstances, "there is one library, of another size");
    static const Library& library = *new Library(instances);
    return library;
}

std::vector<int> Library::sizes() { return {kInstances}; }

Library::Library(int instances) : values_(sampleValues(instances)) {
    folder_.makeFolder("Logs");
    folder_.write("vantrel.conf", sampleText(values_));
    getBool = bridgeConfGetBool;
    getI32 = bridgeConfGetI32;
    getString = bridgeConfGetString;
    getMultiString = bridgeConfGetMultiString;
    setBool = bridgeConfSetBool;
    setI32 = bridgeConfSetI32;
    setString = bridgeConfSetString;
    setMultiString = bridgeConfSetMultiString;
    commit = bridgeConfCommit;
    freeMemory = bridgeFreeMemory;
    RegistrySandbox registry;
    registry.set("UserDefinedDir", folder_.path());
    benchCheck(bridgeApiInit("Helper") == BRIDGE_SUCCESS, "the library does not initialise");
}
