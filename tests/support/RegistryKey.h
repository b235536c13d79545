#ifndef TESTS_REGISTRYKEY_H
#define TESTS_REGISTRYKEY_H

#include <cstddef>
#include <string_view>

#include "support/WindowsForTests.h"

// Creates or opens a key with all rights, in the 64-bit view.
HKEY createRegistryKey(HKEY root, const wchar_t* path);

// Sets a value of the product's key in HKEY_LOCAL_MACHINE, which may be overridden.
void setProductValue(std::string_view name, unsigned long type, const void* data, std::size_t size);
void setProductText(std::string_view name, std::string_view text);

constexpr const wchar_t* kProductKey = L"SOFTWARE\\Vantrel_nvo";

#endif
