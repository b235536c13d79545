// A C++ host that sets its folders itself: folders_cpp SCENARIO DATA-FOLDER INSTALL-FOLDER. Prints
// what it then reads from the registry and the library, and "finished" at the end.
#include <fcntl.h>
#include <io.h>

#include <bridge/bridge.hpp>
#include <cstdio>
#include <exception>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "support/Platform.h"
#include "support/WindowsForTests.h"

namespace {

struct Folders {
    std::string data;
    std::string install;
};

void say(const std::string& line) { std::printf("%s\n", line.c_str()); }

void use(const Folders& folders) { bridge::useFolders(folders.data, folders.install); }

std::string subkeysOf(HKEY key) {
    std::string all;
    wchar_t name[256];
    for (DWORD i = 0;; ++i) {
        DWORD size = 256;
        if (::RegEnumKeyExW(key, i, name, &size, nullptr, nullptr, nullptr, nullptr) != 0) {
            return all;
        }
        all += " " + std::string(name, name + size);
    }
}

std::string developmentKey() {
    return "Software\\QX-Bridge\\Development-" + std::to_string(::GetCurrentProcessId());
}

void sayValues(const Folders& /*folders*/) {
    say("below HKEY_LOCAL_MACHINE:" + subkeysOf(HKEY_LOCAL_MACHINE));
    for (const wchar_t* name : {L"InstallDir", L"UserDefinedDir", L"Version"}) {
        say(bridge::detail::productValue(name));
    }
}

void sayInstances(const Folders& /*folders*/) {
    for (const bridge::Problem& one : bridge::preflight(bridge::Client::Launcher)) say(one.what);
    bridge::init(bridge::Client::Launcher).orThrow();
    for (const bridge::Instance& one : bridge::instanceList().value()) {
        say("instance " + one.instance + " " + one.displayName);
    }
    bridge::finish();
}

void sayOwnKey(const Folders& /*folders*/) {
    HKEY key = nullptr;
    const long error =
        ::RegOpenKeyExA(HKEY_CURRENT_USER, developmentKey().c_str(), 0, KEY_READ, &key);
    if (error != 0) return say("no key");
    say("key with" + subkeysOf(key));
    ::RegCloseKey(key);
}

void sayRefusal(const Folders& folders) {
    try {
        use(folders);
        say("no refusal");
    } catch (const std::exception& error) {
        say(error.what());
    }
}

void twice(const Folders& folders) {
    bridge::useFolders(folders.data + "-other", "C:\\Other");
    use(folders);
    sayValues(folders);
}

void afterTheStart(const Folders& folders) {
    bridge::init(bridge::Client::Launcher).orThrow();
    sayRefusal(folders);
    bridge::finish();
    sayRefusal(folders);
}

// HKEY_CURRENT_USER is replaced by a deleted key, below which no key can be created.
void withoutAUser(const Folders& folders) {
    HKEY gone = nullptr;
    const std::string name =
        "Software\\QXBridgeTests\\no-user-" + std::to_string(::GetCurrentProcessId());
    ::RegCreateKeyExA(HKEY_CURRENT_USER, name.c_str(), 0, nullptr, REG_OPTION_VOLATILE,
                      KEY_ALL_ACCESS, nullptr, &gone, nullptr);
    ::RegDeleteKeyA(HKEY_CURRENT_USER, name.c_str());
    ::RegOverridePredefKey(HKEY_CURRENT_USER, gone);
    ::RegCloseKey(gone);
    try {
        use(folders);
    } catch (const bridge::WindowsError& error) {
        std::string text = error.what();
        const std::string id = std::to_string(::GetCurrentProcessId());
        say(std::to_string(error.code()) + " " + text.replace(text.find(id), id.size(), "ID"));
    }
    ::RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
    HKEY system = nullptr;
    const bool isThere = ::RegOpenKeyExA(HKEY_LOCAL_MACHINE, "SYSTEM", 0, KEY_READ, &system) == 0;
    say(isThere ? "the machine's registry" : "no registry of the machine");
    ::RegCloseKey(system);
}

using Scenario = std::function<void(const Folders&)>;

const std::map<std::string, Scenario>& scenarios() {
    static const std::map<std::string, Scenario> all = {
        {"values", [](const Folders& folders) { use(folders), sayValues(folders); }},
        {"instances", [](const Folders& folders) { use(folders), sayInstances(folders); }},
        {"own-key", [](const Folders& folders) { use(folders), sayOwnKey(folders); }},
        {"twice", twice},
        {"after-the-start", [](const Folders& folders) { use(folders), afterTheStart(folders); }},
        {"refusal", sayRefusal},
        {"not-utf-8",
         [](const Folders& folders) {
             sayRefusal({folders.data,
                         "C:\\Gr\xF6\xDF"
                         "e"});
         }},
        {"nul",
         [](const Folders& folders) {
             sayRefusal({folders.data + '\0', folders.install});
         }},
        {"without-a-user", withoutAUser},
    };
    return all;
}

}  // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> arguments = utf8Arguments(argc, argv);
    ::_setmode(::_fileno(stdout), _O_BINARY);  // lines end without "\r"
    std::setvbuf(stdout, nullptr, _IONBF, 0);
    scenarios().at(arguments[1])({arguments[2], arguments[3]});
    say("finished");
    return 0;
}
