#ifndef TESTS_WINDOWSFORTESTS_H
#define TESTS_WINDOWSFORTESTS_H

// <windows.h> for tests that call the system directly.
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <string>
#include <string_view>

std::wstring wideForTests(std::string_view text);

#endif
