#ifndef TESTS_PRODUCTREGISTRY_H
#define TESTS_PRODUCTREGISTRY_H

#include <string_view>

// The product's real key in the registry of this machine (under Wine: of this prefix), for programs
// that cannot be given a registry of their own. Shared by everything that runs at the same time: a
// test binary that uses it runs alone. Removed at the end.
class ProductRegistry {
 public:
    ProductRegistry() = default;
    ~ProductRegistry();
    ProductRegistry(const ProductRegistry&) = delete;
    ProductRegistry& operator=(const ProductRegistry&) = delete;

    void set(std::string_view name, std::string_view text);
};

#endif
