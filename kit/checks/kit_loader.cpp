// A host that loads the library at run time. Its own folder has no Qt; the library's folder has.
//
//     kit_loader load WAY DLL               WAY: plain, altered, directory
//     kit_loader locale NAME ORDER DLL FILE ORDER: before or after the initialisation; commits to
//                                           FILE and prints what it reads
//
// Prints what each step returned.
#include <bridge/bridge.h>

#include <clocale>
#include <cstdio>
#include <string>
#include <vector>

#include "shared/Console.h"
#include "xpl/Xtext.h"

// Last: it brings <windows.h>.
#include "xpl/XwindowsLean.h"

const char* const programName = "kit_loader";

namespace {

std::wstring wide(const std::string& text) {
    std::wstring result;
    return xtextToWide(text, result) == XERR_SUCCESS ? result : std::wstring();
}

HMODULE loadFromDirectory(const std::wstring& path) {
    const std::wstring folder = path.substr(0, path.rfind(L'\\'));
    if (::AddDllDirectory(folder.c_str()) == nullptr) return nullptr;
    return ::LoadLibraryExW(path.c_str(), nullptr, LOAD_LIBRARY_SEARCH_DEFAULT_DIRS);
}

HMODULE load(const std::string& way, const std::string& dll) {
    const std::wstring path = wide(dll);
    if (way == "plain") return ::LoadLibraryW(path.c_str());
    if (way == "directory") return loadFromDirectory(path);
    return ::LoadLibraryExW(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
}

template <typename Function>
Function* functionOf(HMODULE library, const char* name) {
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(::GetProcAddress(library, name)));
}

#define CALL(library, name) functionOf<decltype(name)>(library, #name)

int init(HMODULE library, const std::string& log) {
    return CALL(library, bridgeApiInitEx)("Helper", 1, 0, log.c_str());
}

void print(const char* name, long number) { std::printf("%s %ld\n", name, number); }

int playLoad(const std::string& way, const std::string& dll) {
    const HMODULE library = load(way, dll);
    print("load", library == nullptr ? static_cast<long>(::GetLastError()) : 0);
    if (library == nullptr) return 0;
    print("init", init(library, dll + ".log"));
    print("fini", CALL(library, bridgeApiFini)());
    return 0;
}

void useLocale(const std::string& name) {
    std::printf("locale %s\n", std::setlocale(LC_ALL, name.c_str()) == nullptr ? "unknown" : "set");
}

// Numbers with a point, and letters whose case depends on the language.
void useConfiguration(HMODULE library, const std::string& file) {
    print("set", CALL(library, bridgeConfSetI32)("vtr.instance.Nougat64.ram", 123456789));
    print("set", CALL(library, bridgeConfSetString)("vtr.instance.Nougat64.display_name",
                                                    "I \xC4\xB1 i \xC4\xB0 1.5 \xE6\x97\xA5"));
    print("commit", CALL(library, bridgeConfCommitToFile)(file.c_str()));
    char* const listing = CALL(library, bridgeConfGetInstances)();
    std::printf("%s", listing == nullptr ? "(null)\n" : listing);
    CALL(library, bridgeFreeMemory)(listing);
}

int playLocale(const std::vector<std::string>& words) {
    if (words[2] == "before") useLocale(words[1]);
    const HMODULE library = load("altered", words[3]);
    if (library == nullptr) return 2;
    print("init", init(library, words[4] + ".log"));
    if (words[2] == "after") useLocale(words[1]);
    useConfiguration(library, words[4]);
    print("fini", CALL(library, bridgeApiFini)());
    return 0;
}

}  // namespace

int main() {
    const std::vector<std::string> words = commandLineArguments();
    if (words.size() == 3 && words[0] == "load") return playLoad(words[1], words[2]);
    if (words.size() == 5 && words[0] == "locale") return playLocale(words);
    return 1;
}
