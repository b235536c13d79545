#include "LibraryVersion.h"

#include <bridge/bridge.h>

#include <cstring>

#include "shared/Console.h"

// Last: it defines macros.
#include "xpl/XwindowsLean.h"

namespace {

// The fixed part of a version resource stands behind its header: three 16-bit numbers and
// L"VS_VERSION_INFO" with its NUL, filled up to a multiple of four bytes.
constexpr DWORD kFixedInfoOffset = 40;
constexpr DWORD kFixedInfoSignature = 0xFEEF04BD;

bool readFixedInfo(VS_FIXEDFILEINFO& info) {
    const HMODULE library = ::GetModuleHandleW(L"QX-Bridge.dll");
    const HRSRC resource =
        ::FindResourceW(library, MAKEINTRESOURCEW(VS_VERSION_INFO), MAKEINTRESOURCEW(16));
    if (library == nullptr || resource == nullptr) return false;
    const DWORD size = ::SizeofResource(library, resource);
    const void* const data = ::LockResource(::LoadResource(library, resource));
    if (data == nullptr || size < kFixedInfoOffset + sizeof info) return false;
    std::memcpy(&info, static_cast<const char*>(data) + kFixedInfoOffset, sizeof info);
    return info.dwSignature == kFixedInfoSignature;
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
