/* A host's DLL that calls bridgeApiFini too late: while the process ends, when the library's
 * threads are gone. */
#include <bridge/bridge.h>
#include <windows.h>

BOOL WINAPI DllMain(HINSTANCE self, DWORD reason, LPVOID processEnds) {
    (void)self;
    if (reason == DLL_PROCESS_DETACH && processEnds != NULL) bridgeApiFini();
    return TRUE;
}
