/*
 * A small host in C: example_c [EVENTS]
 * Lists the instances, reads a setting, waits for EVENTS events (default 0), and ends.
 */
#include <bridge/bridge.h>
#include <stdio.h>
#include <stdlib.h>
#include <windows.h>

static HANDLE arrived; /* counts the events */

/* Callbacks run on the library's thread. Their texts are valid only during the call. */
static void BRIDGE_CALL onAppInstalled(const char* instance, const char* package,
                                       const char* activity, const char* appLabel,
                                       bridge_i32 versionCode, const char* versionName,
                                       const char* iconFilePath, bridge_bool isUpdate) {
    (void)activity, (void)versionCode, (void)iconFilePath, (void)isUpdate;
    printf("installed %s %s: %s %s\n", instance, package, appLabel, versionName);
    ReleaseSemaphore(arrived, 1, NULL);
}

static void BRIDGE_CALL onAppDisplayed(const char* instance, const char* package) {
    printf("displayed %s %s\n", instance, package);
    ReleaseSemaphore(arrived, 1, NULL);
}

int main(int count, char** arguments) {
    int events = count > 1 ? atoi(arguments[1]) : 0;
    char* text;
    bridge_i32 code = bridgeApiInit("Helper"); /* the library keeps this pointer */
    if (code != BRIDGE_SUCCESS) {
        fprintf(stderr, "the library does not start: %d\n", code);
        return 1;
    }
    SetConsoleOutputCP(CP_UTF8);

    text = bridgeConfGetInstances();
    printf("instances %s\n", text != NULL ? text : "");
    bridgeFreeMemory(text);

    text = bridgeConfGetString("vtr.locale");
    printf("locale %s\n", text != NULL ? text : "");
    bridgeFreeMemory(text);

    arrived = CreateSemaphoreW(NULL, 0, 0x7fffffff, NULL);
    bridgeRegisterCallbacks(onAppInstalled, NULL, NULL, NULL, NULL, NULL, NULL, onAppDisplayed,
                            NULL);
    printf("listening\n");
    fflush(stdout);
    while (events-- > 0 && WaitForSingleObject(arrived, 30000) == WAIT_OBJECT_0) {
    }

    bridgeApiFini(); /* no callback runs after this */
    printf("finished\n");
    return 0;
}
