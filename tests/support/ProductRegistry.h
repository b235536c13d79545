#ifndef TESTS_PRODUCTREGISTRY_H
#define TESTS_PRODUCTREGISTRY_H

#include <string_view>

// The product's real registry key of this machine (under Wine: of this prefix), for programs that
// cannot have their own registry. All processes share it, so a test binary that uses it runs alone.
// The destructor removes the key.
class ProductRegistry {
 public:
    ProductRegistry() = default;
    ~ProductRegistry();
    ProductRegistry(const ProductRegistry&) = delete;
    ProductRegistry& operator=(const ProductRegistry&) = delete;

    void set(std::string_view name, std::string_view text);
};

#endif
