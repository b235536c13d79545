/**
 * @file development.hpp
 * @brief Other folders than those of the machine's registry, for development.
 */
#ifndef BRIDGE_DEVELOPMENT_HPP
#define BRIDGE_DEVELOPMENT_HPP

#include <bridge/bridge.h>
#include <bridge/windows_calls.h>

#include <bridge/process.hpp>
#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <string>

namespace bridge {

/** A Windows function that failed. The text names the function, its object and the error. */
class WindowsError : public std::runtime_error {
 public:
    WindowsError(const std::string& operation, const std::string& object, long code)
        : std::runtime_error(operation + " for " + object + ": Windows error " +
                             std::to_string(code)),
          code_(code) {}

    /** The error code of winerror.h. */
    long code() const noexcept { return code_; }

 private:
    long code_;
};

/** How useFolders() writes the registry; not for hosts. */
namespace detail {

#if defined(_WIN32)

/** Predefined keys are 32-bit numbers, sign-extended. */
inline HKEY__* predefinedKey(std::uint32_t number) noexcept {
    return reinterpret_cast<HKEY__*>(static_cast<std::intptr_t>(static_cast<std::int32_t>(number)));
}

inline HKEY__* currentUser() noexcept { return predefinedKey(0x80000001); }

inline void requireSuccess(long error, const char* operation, const std::string& object) {
    if (error != 0) throw WindowsError(operation, object, error);
}

/** An argument of useFolders() in UTF-16. */
inline std::wstring wideArgument(const std::string& text, const std::string& name) {
    constexpr unsigned int kUtf8 = 65001;
    constexpr unsigned long kStrict = 8;  // MB_ERR_INVALID_CHARS
    if (text.empty()) throw std::invalid_argument(name + " must not be empty");
    if (text.find('\0') != std::string::npos) {
        throw std::invalid_argument(name + " must not contain a NUL");
    }
    std::wstring wide(text.size(), L'\0');
    const int size = static_cast<int>(text.size());
    const int used = ::MultiByteToWideChar(kUtf8, kStrict, text.data(), size, wide.data(), size);
    if (used <= 0) throw std::invalid_argument(name + " is not valid UTF-8");
    wide.resize(static_cast<std::size_t>(used));
    return wide;
}

/** An open volatile key below HKEY_CURRENT_USER. Its path is ASCII. */
class VolatileKey {
 public:
    explicit VolatileKey(std::string path) : path_("HKEY_CURRENT_USER\\" + path) {
        constexpr unsigned long kVolatile = 1;
        constexpr unsigned long kReadWrite64 = 0x20019 | 0x20006 | 0x0100;  // KEY_WOW64_64KEY
        const std::wstring wide(path.begin(), path.end());
        requireSuccess(::RegCreateKeyExW(currentUser(), wide.c_str(), 0, nullptr, kVolatile,
                                         kReadWrite64, nullptr, &key_, nullptr),
                       "RegCreateKeyExW", path_);
    }
    ~VolatileKey() { ::RegCloseKey(key_); }
    VolatileKey(const VolatileKey&) = delete;
    VolatileKey& operator=(const VolatileKey&) = delete;

    void set(const char* name, const std::wstring& text) const {
        constexpr unsigned long kText = 1;  // REG_SZ
        const std::wstring wide(name, name + std::char_traits<char>::length(name));
        const auto* const bytes = reinterpret_cast<const unsigned char*>(text.c_str());
        const auto size = static_cast<unsigned long>((text.size() + 1) * sizeof(wchar_t));
        requireSuccess(::RegSetValueExW(key_, wide.c_str(), 0, kText, bytes, size),
                       "RegSetValueExW", path_ + "\\" + name);
    }

    /** Makes this process use the key as HKEY_LOCAL_MACHINE. Windows keeps its own handle. */
    void becomeLocalMachine() const {
        requireSuccess(::RegOverridePredefKey(predefinedKey(0x80000002), key_),
                       "RegOverridePredefKey", "HKEY_LOCAL_MACHINE");
    }

 private:
    std::string path_;
    HKEY__* key_ = nullptr;
};

inline std::string developmentKey() {
    return "Software\\QX-Bridge\\Development-" + std::to_string(::GetCurrentProcessId());
}

inline void deleteDevelopmentKey() {
    const std::string path = developmentKey();
    ::RegDeleteTreeW(currentUser(), std::wstring(path.begin(), path.end()).c_str());
}

inline void deleteDevelopmentKeyAtExit() {
    static const int registered = std::atexit(deleteDevelopmentKey);
    static_cast<void>(registered);
}

#endif

}  // namespace detail

/**
 * For development: makes this process use these folders instead of those that the registry of the
 * machine names. Needs no administrator rights and no installed product.
 *
 * The process gets its own HKEY_LOCAL_MACHINE: a volatile key below HKEY_CURRENT_USER that holds
 * only "UserDefinedDir", "InstallDir" and "Version" of the product. The rest of HKEY_LOCAL_MACHINE
 * is hidden from this process. Programs that it starts see the machine's. The key is deleted when
 * the process exits; after a fatal error it remains until the user logs off.
 *
 * Call it at the start of main(), before init() and before another thread runs: it changes the
 * whole process and takes no lock. preflight() sees the folders. A later call before init()
 * replaces them.
 *
 * @param dataFolder    folder of vantrel.conf and Logs, in UTF-8
 * @param installFolder folder of the product's programs or of the stand-ins, in UTF-8; a missing
 *                      "\" at its end is added
 * @throws std::invalid_argument a path is empty, has a NUL or is not UTF-8
 * @throws std::logic_error      init() was called before
 * @throws WindowsError          Windows refuses it
 */
inline void useFolders(const std::string& dataFolder, const std::string& installFolder) {
    if (!detail::clientOfStart().empty()) {
        throw std::logic_error("useFolders() must be called before init()");
    }
#if defined(_WIN32)
    const std::wstring data = detail::wideArgument(dataFolder, "dataFolder");
    std::wstring programs = detail::wideArgument(installFolder, "installFolder");
    if (programs.back() != L'\\') programs += L'\\';
    detail::deleteDevelopmentKey();  // of an earlier call, or of an ended process with this id
    detail::deleteDevelopmentKeyAtExit();
    const detail::VolatileKey root(detail::developmentKey());
    const detail::VolatileKey product(detail::developmentKey() + "\\SOFTWARE\\Vantrel_nvo");
    product.set("UserDefinedDir", data);
    product.set("InstallDir", programs);
    product.set("Version", detail::wideArgument(BRIDGE_VERSION_TEXT, "version"));
    root.becomeLocalMachine();
#else
    static_cast<void>(dataFolder);
    static_cast<void>(installFolder);
#endif
}

}  // namespace bridge

#endif
