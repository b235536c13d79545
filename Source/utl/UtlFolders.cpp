// The product's folders, from the registry, and names derived from them.
#include "utl/UtlFolders.h"

#include <cstddef>

#include "utl/UtlRegistry.h"
#include "xpl/Xlog.h"
#include "xpl/Xtext.h"
#include "xpl/Xunload.h"

namespace {

constexpr XlogModule kLog{XlogTag::UTL, "Source/utl/Utl"};

std::string productValue(const char* name) {
    return utlRegistryString(UtlRegistryRoot::LocalMachine, UTL_PRODUCT_KEY, name, {});
}

// A string that is computed on first use and never freed.
using Cached = const std::string&;

Cached installDir() {
    static Cached text = *xunloadKeep<std::string>(productValue("InstallDir"));
    return text;
}

Cached dataDir() {
    static Cached text = *xunloadKeep<std::string>(productValue("UserDefinedDir") + "\\");
    return text;
}

std::wstring wideValue(const char* name) {
    std::wstring wide;
    // The text comes from UTF-16, so the conversion cannot fail; an empty path is refused later.
    static_cast<void>(xtextToWide(productValue(name), wide));
    return wide;
}

bool isSeparator(wchar_t c) { return c == L'\\' || c == L'/'; }

bool isLetter(wchar_t c) { return (c >= L'A' && c <= L'Z') || (c >= L'a' && c <= L'z'); }

// Length of a path's root name: "C:", "\\server\share", or nothing.
std::size_t rootNameLength(std::wstring_view path) {
    if (path.size() >= 2 && isLetter(path[0]) && path[1] == L':') return 2;
    if (path.size() < 3 || !isSeparator(path[0]) || !isSeparator(path[1])) return 0;
    if (isSeparator(path[2])) return 0;  // no server name
    const std::size_t server = path.find_first_of(L"\\/", 2);
    if (server == std::wstring_view::npos) return path.size();
    const std::size_t share = path.find_first_of(L"\\/", server + 1);
    return share == std::wstring_view::npos ? path.size() : share;
}

}  // namespace

std::string utlGetInstallDir() {
    if (installDir().empty()) {
        XLOG_E(kLog, "%s: Failed to get install dir properly", "utlGetInstallDir");
        XLOG_FATAL(kLog);
    }
    return installDir();
}

std::string utlGetDataDir() {
    // Never true: dataDir() ends with a separator even if the value is missing.
    if (dataDir().empty()) {
        XLOG_E(kLog, "%s: Failed to get data dir properly", "utlGetDataDir");
        XLOG_FATAL(kLog);
    }
    return dataDir();
}

std::filesystem::path utlInstallDir() {
    static const std::wstring& path = *xunloadKeep<std::wstring>(wideValue("InstallDir"));
    if (!utlIsAbsolute(path)) {
        XLOG_E(kLog, "%s: Failed to initialize installDir properly: Got %s", "utlInstallDir",
               xtextToUtf8(path).c_str());
        XLOG_FATAL(kLog);
    }
    return path;
}

std::filesystem::path utlDataDir() {
    static const std::wstring& path = *xunloadKeep<std::wstring>(wideValue("UserDefinedDir"));
    if (!utlIsAbsolute(path)) XLOG_FATAL(kLog);
    return path;
}

std::string utlAssetsDir() {
    static Cached text = *xunloadKeep<std::string>(utlGetDataDir() + "Client/Assets/");
    return text;
}

std::string utlLogsDir() {
    static Cached text = *xunloadKeep<std::string>(utlGetDataDir() + "Logs/");
    return text;
}

std::string utlSharedDir() {
    static Cached text =
        *xunloadKeep<std::string>(utlGetDataDir() + "/Engine/UserData/SharedFolder/");
    return text;
}

std::string utlPlayerLogPath() { return utlLogsDir() + "Player.log"; }

std::string utlGlobalObjectName(std::string_view text) {
    return "Global\\" + utlLocalObjectName(text);
}

std::string utlLocalObjectName(std::string_view text) {
    return std::string("vtr_").append(text).append("_nvo");
}

bool utlIsAbsolute(std::wstring_view path) {
    const std::size_t root = rootNameLength(path);
    return root > 0 && root < path.size() && isSeparator(path[root]);
}
