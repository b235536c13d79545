#ifndef BRIDGECTL_DOCTOR_SYSTEM_H
#define BRIDGECTL_DOCTOR_SYSTEM_H

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// What the doctor asks the system.

enum class RegistryValue { Missing, OtherType, Text };

// What the product's key in the registry has under a name.
RegistryValue registryValueState(const std::string& name);

// Whether Windows refuses unsigned files (Smart App Control).
bool unsignedFilesAreRefused();

// The accounts that may create files in a folder; empty when the system does not say.
std::vector<std::string> writersOf(const std::string& folder);

enum class LockState { Free, Held, Refused };

// Whether a machine-wide mutex is free, or becomes free within the limit. One that does not exist
// is free, and is not created.
LockState lockState(const std::string& name, std::chrono::milliseconds limit);

struct PipeServer {
    std::uint32_t process = 0;
    std::string image;  // file name of the program; empty when it may not be known
};

// Who serves a local socket; nothing when nobody does.
std::optional<PipeServer> pipeServer(const std::string& serverName);

// Full path of a module that this process has loaded, "" for the program.
std::string modulePath(const std::string& name);

// Version of a file from its resource: "5.15.8.0"; empty when it has none.
std::string fileVersion(const std::string& path);

// Whether the program or DLL carries a signature. Whether that is valid is not looked at.
bool isSigned(const std::string& path);

// The folders in which Windows looks for a DLL, in that order.
std::vector<std::string> searchFolders();

// Whether two paths lead to one folder.
bool isSameFolder(const std::string& one, const std::string& other);

std::uint32_t thisProcess();

#endif
