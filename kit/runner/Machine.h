#ifndef KIT_MACHINE_H
#define KIT_MACHINE_H

#include <filesystem>

#include "Record.h"

// Whether this is Wine and not Windows.
bool isWine();

// Whether this process is elevated.
bool isElevated();

// Whether this process can write keys below HKEY_LOCAL_MACHINE, which requires elevation on Windows
// but not under Wine.
bool canWriteMachineKeys();

// Whether the 64-bit view of the registry, which the library reads, has the product's key.
bool isProductInstalled();

// Facts about the machine, this process and the file systems of two folders. They contain no names
// of users or computers.
Facts machineFacts(const std::filesystem::path& kit, const std::filesystem::path& work);

#endif
