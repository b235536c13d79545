#ifndef BRIDGECTL_OWNREGISTRY_H
#define BRIDGECTL_OWNREGISTRY_H

#include <string>

// A private HKEY_LOCAL_MACHINE for this process that contains only the product's key, for working
// without the product and without administrator rights. The destructor removes it. After a fatal
// end, it disappears when the user logs off.
class OwnRegistry {
 public:
    OwnRegistry() = default;
    ~OwnRegistry();
    OwnRegistry(const OwnRegistry&) = delete;
    OwnRegistry& operator=(const OwnRegistry&) = delete;

    // Stores these folders and the library's version in it. Call once, before anything reads the
    // registry. Throws std::runtime_error with the Windows error.
    void useFolders(const std::string& dataFolder, const std::string& installFolder);

 private:
    std::wstring path_;  // in HKEY_CURRENT_USER; empty before useFolders()
};

#endif
