#ifndef UTL_UTLREGISTRY_H
#define UTL_UTLREGISTRY_H

#include <string>

// Where the product's installer writes, in the 64-bit view of HKEY_LOCAL_MACHINE.
constexpr const char* UTL_PRODUCT_KEY = "SOFTWARE\\Vantrel_nvo";

enum class UtlRegistryRoot { LocalMachine, CurrentUser };

// Reads a REG_SZ value. A missing key or value, another type (REG_EXPAND_SZ too) and a failed read
// give the default unchanged.
std::string utlRegistryString(UtlRegistryRoot root, const std::string& keyPath,
                              const std::string& valueName, const std::string& defaultValue);

#endif
