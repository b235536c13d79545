/* Takes the place of Microsoft's compiler: it copies the program QX_FAKE_HOST to the one that /Fe:
 * names, and fails without that variable. */
#include <string.h>
#include <windows.h>

int main(int count, char** arguments) {
    char host[MAX_PATH];
    int i;
    if (GetEnvironmentVariableA("QX_FAKE_HOST", host, MAX_PATH) == 0) return 2;
    for (i = 1; i < count; ++i) {
        if (strncmp(arguments[i], "/Fe:", 4) == 0)
            return CopyFileA(host, arguments[i] + 4, FALSE) ? 0 : 1;
    }
    return 1;
}
