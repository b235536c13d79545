#include "support/Wine.h"

#include "support/WindowsForTests.h"

bool runsUnderWine() {
    const HMODULE ntdll = ::GetModuleHandleW(L"ntdll.dll");
    return ::GetProcAddress(ntdll, "wine_get_version") != nullptr;
}
