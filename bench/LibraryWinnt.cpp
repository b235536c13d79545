// The DLL itself.
#include "Bench.h"
#include "Library.h"
#include "support/RegistrySandbox.h"
#include "support/WindowsForTests.h"

namespace {

template <typename Function>
void resolve(HMODULE module, const char* name, Function& function) {
    function = reinterpret_cast<Function>(reinterpret_cast<void*>(::GetProcAddress(module, name)));
    benchCheck(function != nullptr, name);
}

}  // namespace

const Library& Library::get() {
    static const Library& library = *new Library;
    return library;
}

Library::Library() : values_(sampleValues(kInstances)) {
    folder_.makeFolder("Logs");
    folder_.write("vantrel.conf", sampleText(values_));
    const HMODULE module = ::LoadLibraryW(L"QX-Bridge.dll");
    benchCheck(module != nullptr, "QX-Bridge.dll does not load");
    decltype(&bridgeApiInit) init = nullptr;
    resolve(module, "bridgeApiInit", init);
    resolve(module, "bridgeConfGetBool", getBool);
    resolve(module, "bridgeConfGetI32", getI32);
    resolve(module, "bridgeConfGetString", getString);
    resolve(module, "bridgeConfGetMultiString", getMultiString);
    resolve(module, "bridgeConfSetBool", setBool);
    resolve(module, "bridgeConfSetI32", setI32);
    resolve(module, "bridgeConfSetString", setString);
    resolve(module, "bridgeConfSetMultiString", setMultiString);
    resolve(module, "bridgeFreeMemory", freeMemory);
    RegistrySandbox registry;
    registry.set("UserDefinedDir", folder_.path());
    benchCheck(init("Helper") == BRIDGE_SUCCESS, "the library does not initialise");
}
