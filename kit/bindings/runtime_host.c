/* runtime_host LOG: a host that can be built with another C runtime than the library's. It frees
 * memory of the library. */
#include <bridge/bridge.h>
#include <stdio.h>
#include <string.h>

int main(int count, char** arguments) {
    char* text;
    int isSame;
    if (count != 2 || bridgeApiInitEx("Helper", 1, 0, arguments[1]) != BRIDGE_SUCCESS) return 1;
    bridgeConfSetString("vtr.locale", "tr-TR");
    text = bridgeConfGetString("vtr.locale");
    isSame = text != NULL && strcmp(text, "tr-TR") == 0;
    printf("%s\n", text);
    bridgeFreeMemory(text);
    return bridgeApiFini() == BRIDGE_SUCCESS && isSame ? 0 : 2;
}
