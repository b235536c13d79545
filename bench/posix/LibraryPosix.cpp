// The exports, linked in: there is no DLL here.
#include "Bench.h"
#include "Library.h"
#include "support/RegistrySandbox.h"

const Library& Library::get() {
    static const Library& library = *new Library;
    return library;
}

Library::Library() : values_(sampleValues(kInstances)) {
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
    freeMemory = bridgeFreeMemory;
    RegistrySandbox registry;
    registry.set("UserDefinedDir", folder_.path());
    benchCheck(bridgeApiInit("Helper") == BRIDGE_SUCCESS, "the library does not initialise");
}
