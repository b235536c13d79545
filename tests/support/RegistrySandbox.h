#ifndef TESTS_REGISTRYSANDBOX_H
#define TESTS_REGISTRYSANDBOX_H

#include <string>
#include <string_view>

// Gives this process its own HKEY_LOCAL_MACHINE, empty at first.
class RegistrySandbox {
 public:
    RegistrySandbox();
    ~RegistrySandbox();
    RegistrySandbox(const RegistrySandbox&) = delete;
    RegistrySandbox& operator=(const RegistrySandbox&) = delete;

    // A REG_SZ value of the product's key.
    void set(std::string_view name, std::string_view text);

 private:
    std::wstring key_;
};

#endif
