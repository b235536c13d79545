#include "State.h"

#include <cstddef>
#include <string>
#include <system_error>
#include <vector>

#include "Files.h"
#include "xpl/Xtext.h"

// Last: it brings <windows.h>.
#include "xpl/XwindowsLean.h"

namespace fs = std::filesystem;

namespace {

// Below HKEY_CURRENT_USER: those of the tests, and those in which the bindings keep a host's
// folders.
constexpr const wchar_t* kTestKeys[] = {L"Software\\QXBridgeTests", L"Software\\QX-Bridge"};
constexpr const wchar_t* kProductKey = L"SOFTWARE\\Vantrel_nvo";
constexpr const wchar_t* kCrashHandlers =
    L"SOFTWARE\\Microsoft\\Windows\\Windows Error Reporting\\RuntimeExceptionHelperModules";

std::string bytesAsText(const std::vector<unsigned char>& bytes, DWORD size) {
    std::string text;
    for (DWORD i = 0; i < size; ++i) text += std::to_string(bytes[i]) + " ";
    return text;
}

void addValues(HKEY key, const std::string& name, Snapshot& snapshot) {
    std::vector<wchar_t> value(16384);
    std::vector<unsigned char> data(65536);
    for (DWORD i = 0;; ++i) {
        DWORD length = static_cast<DWORD>(value.size());
        DWORD size = static_cast<DWORD>(data.size());
        DWORD type = 0;
        if (::RegEnumValueW(key, i, value.data(), &length, nullptr, &type, data.data(), &size) !=
            ERROR_SUCCESS) {
            return;
        }
        snapshot[name + " : " + xtextToUtf8({value.data(), length})] =
            std::to_string(type) + ": " + bytesAsText(data, size);
    }
}

std::vector<std::wstring> subkeysOf(HKEY key) {
    std::vector<std::wstring> names;
    wchar_t name[256];
    for (DWORD i = 0;; ++i) {
        DWORD length = 256;
        if (::RegEnumKeyExW(key, i, name, &length, nullptr, nullptr, nullptr, nullptr) !=
            ERROR_SUCCESS) {
            return names;
        }
        names.emplace_back(name, length);
    }
}

// Adds a key with its values and subkeys.
void addKey(HKEY root, const std::wstring& path, REGSAM view, const std::string& shown,
            Snapshot& snapshot) {
    HKEY key = nullptr;
    if (::RegOpenKeyExW(root, path.c_str(), 0, KEY_READ | view, &key) != ERROR_SUCCESS) return;
    const std::string name = shown + xtextToUtf8(path);
    snapshot[name] = "key";
    addValues(key, name, snapshot);
    for (const std::wstring& subkey : subkeysOf(key)) {
        addKey(root, path + L"\\" + subkey, view, shown, snapshot);
    }
    ::RegCloseKey(key);
}

void addFile(const fs::directory_entry& entry, Snapshot& snapshot) {
    std::error_code ignored;
    const bool isFolder = entry.is_directory(ignored);
    snapshot[textOf(entry.path())] = isFolder ? "folder" : std::to_string(entry.file_size(ignored));
}

// Adds everything below a folder, except one subfolder.
void addTree(const fs::path& folder, const fs::path& except, Snapshot& snapshot) {
    std::error_code error;
    for (fs::recursive_directory_iterator at(folder, error), end; at != end; at.increment(error)) {
        if (error) return;
        if (at->path() == except) {
            at.disable_recursion_pending();
        } else {
            addFile(*at, snapshot);
        }
    }
}

// The prefixes that the tests and the kit give to their folders.
bool isOurs(const std::wstring& name) {
    return name.rfind(L"qxb", 0) == 0 || name.rfind(L"QXBridge", 0) == 0;
}

void addOurs(const fs::path& folder, Snapshot& snapshot) {
    std::error_code error;
    for (fs::directory_iterator at(folder, error), end; at != end; at.increment(error)) {
        if (error) return;
        if (isOurs(at->path().filename().native())) addFile(*at, snapshot);
    }
}

fs::path environmentFolder(const wchar_t* name) {
    wchar_t value[32768];
    const DWORD length = ::GetEnvironmentVariableW(name, value, 32768);
    return {std::wstring(value, length < 32768 ? length : 0)};
}

// Removes a key below HKEY_CURRENT_USER, or the subkeys of it that are new.
void removeNewKeys(const wchar_t* path, const Snapshot& before) {
    const std::string shown = "HKEY_CURRENT_USER\\" + xtextToUtf8(path);
    if (before.find(shown) == before.end()) {
        ::RegDeleteTreeW(HKEY_CURRENT_USER, path);
        return;
    }
    HKEY key = nullptr;
    if (::RegOpenKeyExW(HKEY_CURRENT_USER, path, 0, KEY_ALL_ACCESS, &key) != ERROR_SUCCESS) return;
    for (const std::wstring& subkey : subkeysOf(key)) {
        if (before.find(shown + "\\" + xtextToUtf8(subkey)) == before.end()) {
            ::RegDeleteTreeW(key, subkey.c_str());
        }
    }
    ::RegCloseKey(key);
}

}  // namespace

Snapshot stateNow(const fs::path& kit, const fs::path& temporary) {
    Snapshot snapshot;
    for (const wchar_t* path : kTestKeys) {
        addKey(HKEY_CURRENT_USER, path, 0, "HKEY_CURRENT_USER\\", snapshot);
    }
    addKey(HKEY_CURRENT_USER, kCrashHandlers, 0, "HKEY_CURRENT_USER\\", snapshot);
    for (const wchar_t* path : {kProductKey, kCrashHandlers}) {
        addKey(HKEY_LOCAL_MACHINE, path, KEY_WOW64_64KEY, "HKEY_LOCAL_MACHINE (64)\\", snapshot);
        addKey(HKEY_LOCAL_MACHINE, path, KEY_WOW64_32KEY, "HKEY_LOCAL_MACHINE (32)\\", snapshot);
    }
    addTree(kit, kit / "results", snapshot);
    addOurs(temporary, snapshot);
    for (const wchar_t* name : {L"TEMP", L"PUBLIC", L"ProgramData"}) {
        const fs::path folder = environmentFolder(name);
        if (!folder.empty()) addOurs(folder, snapshot);
    }
    return snapshot;
}

Snapshot errorReportsNow() {
    Snapshot snapshot;
    const fs::path local = environmentFolder(L"LOCALAPPDATA");
    if (local.empty()) return snapshot;
    addTree(local / "CrashDumps", {}, snapshot);
    addTree(local / "Microsoft" / "Windows" / "WER", {}, snapshot);
    return snapshot;
}

void removeTestKeys(const Snapshot& before) {
    for (const wchar_t* path : kTestKeys) removeNewKeys(path, before);
}
