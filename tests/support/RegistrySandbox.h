#ifndef TESTS_REGISTRYSANDBOX_H
#define TESTS_REGISTRYSANDBOX_H

#include <cstddef>
#include <string>
#include <string_view>

// Gives this process, and no other, a HKEY_LOCAL_MACHINE of its own, empty at first.
class RegistrySandbox {
 public:
    RegistrySandbox();
    ~RegistrySandbox();
    RegistrySandbox(const RegistrySandbox&) = delete;
    RegistrySandbox& operator=(const RegistrySandbox&) = delete;

    // A REG_SZ value of the product's key.
    void set(std::string_view name, std::string_view text);

    // Any value: type and bytes.
    void setRaw(std::string_view name, unsigned long type, const void* data, std::size_t size);

 private:
    std::wstring key_;
};

#endif
