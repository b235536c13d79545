#ifndef BRIDGECTL_DOCTOR_SYSTEM_H
#define BRIDGECTL_DOCTOR_SYSTEM_H

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// Functions of the system that the doctor needs.

enum class RegistryValue { Missing, OtherType, Text };

// The state of a value of the product's registry key.
RegistryValue registryValueState(const std::string& name);

// Whether Windows refuses unsigned files (Smart App Control).
bool unsignedFilesAreRefused();

// The accounts that may create files in a folder. Empty if the system does not tell.
std::vector<std::string> writersOf(const std::string& folder);

enum class LockState { Free, Held, Refused };

// Whether a machine-wide mutex is free, or becomes free in time. A mutex that does not exist is
// free; it is not created.
LockState lockState(const std::string& name, std::chrono::milliseconds limit);

struct PipeServer {
    std::uint32_t process = 0;
    std::string image;  // file name of the program; empty if it cannot be determined
};

// The server of a local socket, if there is one.
std::optional<PipeServer> pipeServer(const std::string& serverName);

// The full path of a loaded module; "" names the program.
std::string modulePath(const std::string& name);

// The version in a file's version resource: "5.15.8.0". Empty without one.
std::string fileVersion(const std::string& path);

// Whether the program or DLL has a signature. Does not verify it.
bool isSigned(const std::string& path);

// The folders that Windows searches for a DLL, in order.
std::vector<std::string> searchFolders();

// Whether two paths name the same folder.
bool isSameFolder(const std::string& one, const std::string& other);

std::uint32_t thisProcess();

#endif
