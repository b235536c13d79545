#ifndef KIT_MACHINE_H
#define KIT_MACHINE_H

#include <filesystem>

#include "Record.h"

// Whether this is Wine and not Windows.
bool isWine();

// Whether this process has the rights of an administrator.
bool isElevated();

// Whether this process can write keys below HKEY_LOCAL_MACHINE, which takes elevation on Windows
// and nothing under Wine.
bool canWriteMachineKeys();

// Whether the product's key is in the registry: in the 64-bit view, which the library reads.
bool isProductInstalled();

// The machine and this process, without names of users and computers. Folders are those that the
// file systems are asked about.
Facts machineFacts(const std::filesystem::path& kit, const std::filesystem::path& work);

#endif
