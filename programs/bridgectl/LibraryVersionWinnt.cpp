#include "LibraryVersion.h"

#include <bridge/bridge.h>

#include "shared/Console.h"

// Last: it defines macros.
#include "xpl/XwindowsLean.h"

namespace {

// Reads the loaded module: the file may have been replaced.
bool readFixedInfo(VS_FIXEDFILEINFO& info) {
    const HMODULE library = ::GetModuleHandleW(L"QX-Bridge.dll");
    const HRSRC resource = ::FindResourceW(library, MAKEINTRESOURCEW(VS_VERSION_INFO),
                                           /*RT_VERSION*/ MAKEINTRESOURCEW(16));
    if (library == nullptr || resource == nullptr) return false;
    const void* const data = ::LockResource(::LoadResource(library, resource));
    void* found = nullptr;
    UINT size = 0;
    if (data == nullptr || !::VerQueryValueW(data, L"\\", &found, &size)) return false;
    info = *static_cast<const VS_FIXEDFILEINFO*>(found);
    return true;
}

}  // namespace

std::string libraryVersion() {
    VS_FIXEDFILEINFO info;
    if (!readFixedInfo(info)) return {};
    std::string text;
    for (const DWORD pair : {info.dwFileVersionMS, info.dwFileVersionLS}) {
        if (!text.empty()) text += ".";
        text += std::to_string(HIWORD(pair)) + "." + std::to_string(LOWORD(pair));
    }
    return text;
}

std::string programVersions() {
    return std::string(programName) + " " + BRIDGE_VERSION_TEXT + "\nQX-Bridge.dll " +
           libraryVersion();
}
