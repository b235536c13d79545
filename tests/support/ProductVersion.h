#ifndef TESTS_SUPPORT_PRODUCTVERSION_H
#define TESTS_SUPPORT_PRODUCTVERSION_H

// The version of the library, and of the product in the tests.
constexpr char kProductVersion[] = "5.2.0.1052";

#endif
