#include <bridge/bridge.h>
#include <stdio.h>

static void BRIDGE_CALL onAppDisplayed(const char* instance, const char* package) {
    printf("%s shows %s\n", instance, package);
}

int main(void) {
    if (bridgeApiInit("Helper") != BRIDGE_SUCCESS) return 1;
    bridgeRegisterCallbacks(NULL, NULL, NULL, NULL, NULL, NULL, NULL, onAppDisplayed, NULL);
    getchar(); /* callbacks run on a thread of the library until you press Enter */
    return bridgeApiFini();
}
