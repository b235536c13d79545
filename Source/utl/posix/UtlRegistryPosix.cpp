// Texts of the registry, from the file that QX_REGISTRY names. Each line is one value:
// "HKLM\SOFTWARE\Vantrel_nvo\InstallDir=C:\Player\".
#include <cstdlib>
#include <fstream>
#include <ios>

#include "utl/UtlRegistry.h"

std::string utlRegistryString(UtlRegistryRoot root, const std::string& keyPath,
                              const std::string& valueName, const std::string& defaultValue) {
    const char* const path = std::getenv("QX_REGISTRY");
    if (path == nullptr) return defaultValue;
    const std::string name = (root == UtlRegistryRoot::LocalMachine ? "HKLM\\" : "HKCU\\") +
                             keyPath + "\\" + valueName + "=";
    std::ifstream file(path, std::ios::binary);
    std::string text = defaultValue;
    for (std::string line; std::getline(file, line);) {  // the last value of a name counts
        if (line.rfind(name, 0) == 0) text = line.substr(name.size());
    }
    return text;
}
