#include <bridge/bridge.h>
#include <stdio.h>

int main(void) {
    char* text;
    if (bridgeApiInit("Helper") != BRIDGE_SUCCESS) return 1;
    text = bridgeConfGetInstances();
    if (text != NULL) printf("%s", text);
    bridgeFreeMemory(text);
    return bridgeApiFini();
}
