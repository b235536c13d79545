// The DLL, loaded at run time.
#include <filesystem>
#include <map>

#include "Bench.h"
#include "Floor.h"
#include "Library.h"
#include "support/ChildProcess.h"
#include "support/RegistrySandbox.h"
#include "support/WindowsForTests.h"

namespace {

template <typename Function>
void resolve(HMODULE module, const char* name, Function& function) {
    function = reinterpret_cast<Function>(reinterpret_cast<void*>(::GetProcAddress(module, name)));
    benchCheck(function != nullptr, name);
}

// A DLL has one configuration, so each configuration loads its own copy.
HMODULE load(int instances, const TempFolder& folder) {
    if (instances == Library::kInstances) return ::LoadLibraryW(L"QX-Bridge.dll");
    const FloorPath copy = floorPath(folder / "QX-Bridge-copy.dll");
    std::filesystem::copy_file(floorPath(builtProgram("QX-Bridge.dll")), copy);
    return ::LoadLibraryW(copy.c_str());
}

}  // namespace

const Library& Library::get(int instances) {
    static auto& all = *new std::map<int, Library*>;
    Library*& library = all[instances];
    if (library == nullptr) library = new Library(instances);
    return *library;
}

std::vector<int> Library::sizes() { return {10, kInstances}; }

Library::Library(int instances) : values_(sampleValues(instances)) {
    folder_.makeFolder("Logs");
    folder_.write("vantrel.conf", sampleText(values_));
    const HMODULE module = load(instances, folder_);
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
    resolve(module, "bridgeConfCommit", commit);
    resolve(module, "bridgeFreeMemory", freeMemory);
    RegistrySandbox registry;
    registry.set("UserDefinedDir", folder_.path());
    benchCheck(init("Helper") == BRIDGE_SUCCESS, "the library does not initialise");
}
