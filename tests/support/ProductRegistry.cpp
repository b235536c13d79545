#include "support/ProductRegistry.h"

#include "support/RegistryKey.h"

ProductRegistry::~ProductRegistry() { ::RegDeleteTreeW(HKEY_LOCAL_MACHINE, kProductKey); }

void ProductRegistry::set(std::string_view name, std::string_view text) {
    setProductText(name, text);
}
