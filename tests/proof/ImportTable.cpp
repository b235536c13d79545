#include "ImportTable.h"

#include "support/TestHeaders.h"
#include "support/WindowsForTests.h"

namespace {

// The import table's entry of a function, or null.
void** slotIn(HMODULE importer, const char* wanted) {
    auto* const base = reinterpret_cast<char*>(importer);
    const auto* dos = reinterpret_cast<IMAGE_DOS_HEADER*>(base);
    const auto* headers = reinterpret_cast<IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const auto& directory = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    auto* module = reinterpret_cast<IMAGE_IMPORT_DESCRIPTOR*>(base + directory.VirtualAddress);
    for (; module->Name != 0; ++module) {
        auto* name = reinterpret_cast<IMAGE_THUNK_DATA*>(base + module->OriginalFirstThunk);
        auto* slot = reinterpret_cast<void**>(base + module->FirstThunk);
        for (; name->u1.AddressOfData != 0; ++name, ++slot) {
            if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal)) continue;
            const auto* import =
                reinterpret_cast<IMAGE_IMPORT_BY_NAME*>(base + name->u1.AddressOfData);
            if (std::strcmp(reinterpret_cast<const char*>(import->Name), wanted) == 0) return slot;
        }
    }
    return nullptr;
}

}  // namespace

void replaceImport(const char* module, const char* name, void* replacement, void** original) {
    // Looked up before anything is replaced, since the lookup itself calls the system.
    static const HMODULE program = ::GetModuleHandleW(nullptr);
    const HMODULE importer = module == nullptr ? program : ::GetModuleHandleA(module);
    void** const slot = importer == nullptr ? nullptr : slotIn(importer, name);
    if (slot == nullptr) {
        ADD_FAILURE() << name << " is not imported";
        return;
    }
    *original = *slot;
    DWORD before = 0;
    ::VirtualProtect(slot, sizeof *slot, PAGE_READWRITE, &before);
    *slot = replacement;
    ::VirtualProtect(slot, sizeof *slot, before, &before);
}

void setSystemError(unsigned long error) { ::SetLastError(error); }

void* systemAddress(const char* name, const char* module) {
    return reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleA(module), name));
}
