/* A DLL of a host's that ends the library where nothing may be called any more: while Windows takes
 * the process down, and the library's threads are gone. */
#include <bridge/bridge.h>
#include <windows.h>

BOOL WINAPI DllMain(HINSTANCE self, DWORD reason, LPVOID processEnds) {
    (void)self;
    if (reason == DLL_PROCESS_DETACH && processEnds != NULL) bridgeApiFini();
    return TRUE;
}
