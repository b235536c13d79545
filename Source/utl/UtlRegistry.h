#ifndef UTL_UTLREGISTRY_H
#define UTL_UTLREGISTRY_H

#include <string>

// The product's key, in the 64-bit view of HKEY_LOCAL_MACHINE.
constexpr const char* UTL_PRODUCT_KEY = "SOFTWARE\\Vantrel_nvo";

enum class UtlRegistryRoot { LocalMachine, CurrentUser };

// Reads a REG_SZ value. Returns the default for a missing key or value, another type (including
// REG_EXPAND_SZ) or a failed read.
std::string utlRegistryString(UtlRegistryRoot root, const std::string& keyPath,
                              const std::string& valueName, const std::string& defaultValue);

#endif
