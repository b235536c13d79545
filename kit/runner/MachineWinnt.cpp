#include "Machine.h"

#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>

#include "xpl/Xtext.h"

// Last: it brings <windows.h>.
#include "xpl/XwindowsLean.h"

namespace fs = std::filesystem;

namespace {

constexpr const wchar_t* kVersionKey = L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion";
constexpr const wchar_t* kDefender = L"SOFTWARE\\Microsoft\\Windows Defender";
constexpr const wchar_t* kPolicies =
    L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Policies\\System";
constexpr const char* kUnknown = "unknown";

template <typename Function>
Function functionOf(const wchar_t* module, const char* name) {
    const HMODULE handle = ::LoadLibraryExW(module, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
    if (handle == nullptr) return nullptr;
    return reinterpret_cast<Function>(reinterpret_cast<void*>(::GetProcAddress(handle, name)));
}

struct KeyCloser {
    void operator()(HKEY key) const { ::RegCloseKey(key); }
};
using OwnedKey = std::unique_ptr<std::remove_pointer_t<HKEY>, KeyCloser>;

OwnedKey openKey(const wchar_t* path, REGSAM access = KEY_READ) {
    HKEY key = nullptr;
    ::RegOpenKeyExW(HKEY_LOCAL_MACHINE, path, 0, access | KEY_WOW64_64KEY, &key);
    return OwnedKey(key);
}

std::string machineText(const wchar_t* path, const wchar_t* name) {
    wchar_t text[512] = L"";
    DWORD size = sizeof text;
    const OwnedKey key = openKey(path);
    if (key == nullptr || ::RegGetValueW(key.get(), nullptr, name, RRF_RT_REG_SZ, nullptr, text,
                                         &size) != ERROR_SUCCESS) {
        return kUnknown;
    }
    return xtextToUtf8(text);
}

std::string machineNumber(const wchar_t* path, const wchar_t* name) {
    DWORD number = 0;
    DWORD size = sizeof number;
    const OwnedKey key = openKey(path);
    if (key == nullptr || ::RegGetValueW(key.get(), nullptr, name, RRF_RT_REG_DWORD, nullptr,
                                         &number, &size) != ERROR_SUCCESS) {
        return "not set";
    }
    return std::to_string(number);
}

// From RtlGetVersion, which ignores the program's manifest.
std::string buildNumber() {
    using GetVersion = LONG(WINAPI*)(OSVERSIONINFOW*);
    const auto getVersion = functionOf<GetVersion>(L"ntdll.dll", "RtlGetVersion");
    OSVERSIONINFOW version{};
    version.dwOSVersionInfoSize = sizeof version;
    if (getVersion == nullptr || getVersion(&version) != 0) return kUnknown;
    return std::to_string(version.dwMajorVersion) + "." + std::to_string(version.dwMinorVersion) +
           "." + std::to_string(version.dwBuildNumber) + "." + machineNumber(kVersionKey, L"UBR");
}

std::string wineVersion() {
    using GetWine = const char*(__cdecl*)();
    const auto getWine = functionOf<GetWine>(L"ntdll.dll", "wine_get_version");
    return getWine == nullptr ? "no" : getWine();
}

// Reads information from the token of this process.
template <typename Answer>
std::optional<Answer> tokenInformation(TOKEN_INFORMATION_CLASS type) {
    HANDLE token = nullptr;
    if (!::OpenProcessToken(::GetCurrentProcess(), TOKEN_QUERY, &token)) return std::nullopt;
    Answer answer{};
    DWORD size = 0;
    const BOOL isKnown = ::GetTokenInformation(token, type, &answer, sizeof answer, &size);
    ::CloseHandle(token);
    return isKnown ? std::optional<Answer>(answer) : std::nullopt;
}

std::string elevationType() {
    const auto type = tokenInformation<TOKEN_ELEVATION_TYPE>(TokenElevationType);
    if (!type) return kUnknown;
    switch (*type) {
        case TokenElevationTypeFull:
            return "an administrator, elevated";
        case TokenElevationTypeLimited:
            return "an administrator, not elevated";
        default:
            return "no second token";
    }
}

// The last part of the label's SID: 0x1000 is low, 0x2000 medium, 0x3000 high.
std::string integrityLevel() {
    struct Label {
        TOKEN_MANDATORY_LABEL label;
        unsigned char sid[SECURITY_MAX_SID_SIZE];
    };
    HANDLE token = nullptr;
    if (!::OpenProcessToken(::GetCurrentProcess(), TOKEN_QUERY, &token)) return kUnknown;
    Label own{};  // label.Sid points to sid
    DWORD size = 0;
    const BOOL isKnown = ::GetTokenInformation(token, TokenIntegrityLevel, &own, sizeof own, &size);
    ::CloseHandle(token);
    if (!isKnown) return kUnknown;
    const DWORD last = *::GetSidSubAuthorityCount(own.label.Label.Sid) - 1u;
    return hexadecimal(*::GetSidSubAuthority(own.label.Label.Sid, last));
}

std::string serviceState(const wchar_t* name) {
    const SC_HANDLE manager = ::OpenSCManagerW(nullptr, nullptr, SC_MANAGER_CONNECT);
    const SC_HANDLE service = ::OpenServiceW(manager, name, SERVICE_QUERY_STATUS);
    SERVICE_STATUS status{};
    const bool isKnown = service != nullptr && ::QueryServiceStatus(service, &status);
    if (service != nullptr) ::CloseServiceHandle(service);
    if (manager != nullptr) ::CloseServiceHandle(manager);
    if (!isKnown) return "none";
    return status.dwCurrentState == SERVICE_RUNNING ? "running" : "not running";
}

// The state of all scanners together, from the security center.
std::string scannerHealth() {
    constexpr DWORD kAntivirus = 4;
    using GetHealth = HRESULT(WINAPI*)(DWORD, int*);
    const auto getHealth = functionOf<GetHealth>(L"wscapi.dll", "WscGetSecurityProviderHealth");
    int health = -1;
    if (getHealth == nullptr || getHealth(kAntivirus, &health) != S_OK) return kUnknown;
    constexpr const char* kNames[] = {"good", "not monitored", "poor", "snoozed"};
    return health >= 0 && health < 4 ? kNames[health] : kUnknown;
}

// The scanners that are registered with the security center.
std::string scannerNames() {
    constexpr const wchar_t* kProviders = L"SOFTWARE\\Microsoft\\Security Center\\Provider\\Av";
    const OwnedKey providers = openKey(kProviders);
    std::string names;
    wchar_t id[256];
    for (DWORD i = 0; providers != nullptr; ++i) {
        DWORD length = 256;
        if (::RegEnumKeyExW(providers.get(), i, id, &length, nullptr, nullptr, nullptr, nullptr) !=
            ERROR_SUCCESS) {
            break;
        }
        const std::wstring path = std::wstring(kProviders) + L"\\" + id;
        names += (names.empty() ? "" : ", ") + machineText(path.c_str(), L"DISPLAYNAME");
    }
    return names.empty() ? kUnknown : names;
}

std::string fileSystemOf(const fs::path& folder) {
    wchar_t volume[MAX_PATH] = L"";
    wchar_t name[64] = L"";
    if (!::GetVolumePathNameW(folder.c_str(), volume, MAX_PATH) ||
        !::GetVolumeInformationW(volume, nullptr, 0, nullptr, nullptr, nullptr, name, 64)) {
        return kUnknown;
    }
    return xtextToUtf8(name);
}

std::string localeName(int(WINAPI* get)(LPWSTR, int)) {
    wchar_t name[LOCALE_NAME_MAX_LENGTH] = L"";
    return get(name, LOCALE_NAME_MAX_LENGTH) > 0 ? xtextToUtf8(name) : kUnknown;
}

std::string now() {
    SYSTEMTIME time{};
    ::GetSystemTime(&time);
    char text[64];
    std::snprintf(text, sizeof text, "%04u-%02u-%02u %02u:%02u:%02u UTC", time.wYear, time.wMonth,
                  time.wDay, time.wHour, time.wMinute, time.wSecond);
    return text;
}

void addSystem(Facts& facts) {
    facts.emplace_back("time", now());
    facts.emplace_back("Wine", wineVersion());
    facts.emplace_back("product", machineText(kVersionKey, L"ProductName"));
    facts.emplace_back("release", machineText(kVersionKey, L"DisplayVersion"));
    facts.emplace_back("edition", machineText(kVersionKey, L"EditionID"));
    facts.emplace_back("build", buildNumber());
    facts.emplace_back("user locale", localeName(::GetUserDefaultLocaleName));
    facts.emplace_back("system locale", localeName(::GetSystemDefaultLocaleName));
    facts.emplace_back("code page", std::to_string(::GetACP()));
    facts.emplace_back("console code page", std::to_string(::GetOEMCP()));
    facts.emplace_back(
        "LongPathsEnabled",
        machineNumber(L"SYSTEM\\CurrentControlSet\\Control\\FileSystem", L"LongPathsEnabled"));
}

void addPolicies(Facts& facts) {
    facts.emplace_back("scanners", scannerNames());
    facts.emplace_back("state of the scanners", scannerHealth());
    facts.emplace_back("WinDefend", serviceState(L"WinDefend"));
    facts.emplace_back("DisableRealtimeMonitoring",
                       machineNumber((std::wstring(kDefender) + L"\\Real-Time Protection").c_str(),
                                     L"DisableRealtimeMonitoring"));
    facts.emplace_back("Smart App Control",
                       machineNumber(L"SYSTEM\\CurrentControlSet\\Control\\CI\\Policy",
                                     L"VerifiedAndReputablePolicyState"));
    facts.emplace_back("AppIDSvc", serviceState(L"AppIDSvc"));
    facts.emplace_back("EnableLUA", machineNumber(kPolicies, L"EnableLUA"));
    facts.emplace_back("ConsentPromptBehaviorAdmin",
                       machineNumber(kPolicies, L"ConsentPromptBehaviorAdmin"));
    facts.emplace_back("error reporting", serviceState(L"WerSvc"));
}

void addProcess(Facts& facts) {
    DWORD session = 0;
    ::ProcessIdToSessionId(::GetCurrentProcessId(), &session);
    facts.emplace_back("elevated", isElevated() ? "yes" : "no");
    facts.emplace_back("token", elevationType());
    facts.emplace_back("integrity", integrityLevel());
    facts.emplace_back("session", std::to_string(session));
    facts.emplace_back("remote session", ::GetSystemMetrics(SM_REMOTESESSION) != 0 ? "yes" : "no");
}

}  // namespace

bool isWine() { return wineVersion() != "no"; }

bool isElevated() {
    const auto elevation = tokenInformation<TOKEN_ELEVATION>(TokenElevation);
    return elevation && elevation->TokenIsElevated != 0;
}

bool canWriteMachineKeys() { return openKey(L"SOFTWARE", KEY_CREATE_SUB_KEY) != nullptr; }

bool isProductInstalled() { return openKey(L"SOFTWARE\\Vantrel_nvo") != nullptr; }

Facts machineFacts(const fs::path& kit, const fs::path& work) {
    Facts facts;
    addSystem(facts);
    addPolicies(facts);
    addProcess(facts);
    facts.emplace_back("file system of the kit", fileSystemOf(kit));
    facts.emplace_back("file system of the work folder", fileSystemOf(work));
    SYSTEM_INFO system{};
    ::GetNativeSystemInfo(&system);
    facts.emplace_back("processors", std::to_string(system.dwNumberOfProcessors));
    return facts;
}
