#ifndef TESTS_SUPPORT_PRODUCTVERSION_H
#define TESTS_SUPPORT_PRODUCTVERSION_H

// The version that the tests expect of the library and give to the product.
constexpr char kProductVersion[] = "5.2.0.1052";

#endif
