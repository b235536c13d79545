#ifndef BRIDGECTL_OWNREGISTRY_H
#define BRIDGECTL_OWNREGISTRY_H

#include <string>

// A HKEY_LOCAL_MACHINE of this process's own that has the product's key and nothing else, for work
// without the product and without an administrator's rights. The destructor removes it; what is
// left after a fatal end is gone when the user logs off.
class OwnRegistry {
 public:
    OwnRegistry() = default;
    ~OwnRegistry();
    OwnRegistry(const OwnRegistry&) = delete;
    OwnRegistry& operator=(const OwnRegistry&) = delete;

    // Names these folders in it, and the library's version. To be called once, before anything
    // reads the registry. Throws std::runtime_error, with the Windows error.
    void useFolders(const std::string& dataFolder, const std::string& installFolder);

 private:
    std::wstring path_;  // in HKEY_CURRENT_USER; empty before useFolders()
};

#endif
