/*
 * Stands for QX-Bridge.dll where the real one cannot run: the exports of bridge.h for this machine,
 * which write down how they were called. Those that do more are here; recorder.py writes the
 * others. The compiler holds both against the header. A binding's test asks the fake... functions
 * what arrived.
 */
#include "fake_bridge.h"

#include <pthread.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static char calls[1 << 16];
static pthread_mutex_t callsLock = PTHREAD_MUTEX_INITIALIZER;
static void (*onCall)(const char* line);
static bridge_i32 answer;
static int liveTexts;
static const char* keptClient;
static volatile int flooding;
static pthread_t flood;

/* What reading a key, or a function that lists, returns from now on; "null" for the apps is null.
 */
static struct {
    char* name;
    char* text;
} values[1024];
static size_t valueCount;

static struct {
    bridgeOnAppInstalled appInstalled;
    bridgeOnAppUninstalled appUninstalled;
    bridgeOnApkInstallCompleted apkInstallCompleted;
    bridgeOnInstanceListUpdated instanceListUpdated;
    bridgeInstallImageProgress installImageProgress;
    bridgeOnCreateInstanceCompleted createInstanceCompleted;
    bridgeOnInstanceConfigurationChanged instanceConfigurationChanged;
    bridgeOnAppDisplayed appDisplayed;
    bridgeOnAccountListUpdated accountListUpdated;
} slots;

bridge_i32 note(const char* format, ...) {
    char line[4096];
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(line, sizeof line, format, arguments);
    va_end(arguments);
    pthread_mutex_lock(&callsLock);
    strncat(calls, line, sizeof calls - strlen(calls) - 1);
    strncat(calls, "\n", sizeof calls - strlen(calls) - 1);
    pthread_mutex_unlock(&callsLock);
    if (onCall != NULL) onCall(line);
    return answer;
}

static const char* valueOf(const char* name) {
    size_t i;
    for (i = 0; i < valueCount; ++i) {
        if (strcmp(values[i].name, name) == 0) return values[i].text;
    }
    return NULL;
}

const char* shown(const char* text) { return text == NULL ? "(null)" : text; }

char* textFor(const char* key, const char* text) {
    char* copy;
    if (key != NULL && strcmp(key, "null") == 0) return NULL;
    copy = (char*)malloc(strlen(text) + 1);
    strcpy(copy, text);
    __sync_fetch_and_add(&liveTexts, 1);
    return copy;
}

const char* fakeCalls(void) { return calls; }
void fakeReset(void) { calls[0] = '\0'; }
void fakeAnswer(bridge_i32 code) { answer = code; }
int fakeLiveTexts(void) { return liveTexts; }
const char* fakeClient(void) { return keptClient; }

/* Calls the function with the line of each call, before the call returns. */
void fakeOnCall(void (*function)(const char* line)) { onCall = function; }

void fakeValue(const char* name, const char* text) {
    size_t i;
    for (i = 0; i < valueCount && strcmp(values[i].name, name) != 0; ++i) continue;
    if (i == sizeof values / sizeof *values) abort();
    if (i == valueCount) {
        values[valueCount++].name = strdup(name);
    } else {
        free(values[i].text);
    }
    values[i].text = strdup(text);
}

void fakeForgetValues(void) {
    while (valueCount > 0) {
        free(values[--valueCount].name);
        free(values[valueCount].text);
    }
}

static void* sendAll(void* utf8) {
    const int full = utf8 != NULL;
    if (slots.appInstalled)
        slots.appInstalled(full ? "Nougat64" : "", full ? "com.größe" : "", full ? "Main" : "",
                           full ? "第二 App" : "", full ? -5 : 0, full ? "1.0β" : "",
                           full ? "C:\\Ü.png" : "", full ? 1 : 0);
    if (slots.appUninstalled) slots.appUninstalled(full ? "Nougat64" : "", full ? "com.größe" : "");
    if (slots.apkInstallCompleted)
        slots.apkInstallCompleted(full ? "Nougat64" : "", full ? -1 : 0, full ? "C:\\П.apk" : "");
    if (slots.instanceListUpdated) slots.instanceListUpdated();
    if (slots.installImageProgress)
        slots.installImageProgress(full ? "Nougat32" : "", full ? 1 : 0, full ? 33.125 : 0);
    if (slots.createInstanceCompleted)
        slots.createInstanceCompleted(full ? -2 : 0, full ? "Nougat64_1" : "");
    if (slots.instanceConfigurationChanged)
        slots.instanceConfigurationChanged(full ? "Nougat64" : "");
    if (slots.appDisplayed) slots.appDisplayed(full ? "Nougat64" : "", full ? "😀" : "");
    if (slots.accountListUpdated)
        slots.accountListUpdated(full ? "Nougat64" : "", full ? "jürgen@example.com" : "",
                                 full ? 2 : 0);
    return NULL;
}

/* Every event once, on a thread that the binding has never seen; texts full or empty. */
void fakeSend(int full) {
    pthread_t thread;
    pthread_create(&thread, NULL, sendAll, full ? (void*)"full" : NULL);
    pthread_join(thread, NULL);
}

struct event {
    int slot;                 /* from 1, as bridge.h counts them */
    const char* const* texts; /* all of the event's, in its order */
    int number;
    double progress;
    int flag;
};

static void* sendOne(void* memory) {
    const struct event* one = (const struct event*)memory;
    const char* const* t = one->texts;
    const int n = one->number;
    if (one->slot == 1 && slots.appInstalled)
        slots.appInstalled(t[0], t[1], t[2], t[3], n, t[4], t[5], (bridge_bool)one->flag);
    if (one->slot == 2 && slots.appUninstalled) slots.appUninstalled(t[0], t[1]);
    if (one->slot == 3 && slots.apkInstallCompleted) slots.apkInstallCompleted(t[0], n, t[1]);
    if (one->slot == 4 && slots.instanceListUpdated) slots.instanceListUpdated();
    if (one->slot == 5 && slots.installImageProgress)
        slots.installImageProgress(t[0], n, one->progress);
    if (one->slot == 6 && slots.createInstanceCompleted) slots.createInstanceCompleted(n, t[0]);
    if (one->slot == 7 && slots.instanceConfigurationChanged)
        slots.instanceConfigurationChanged(t[0]);
    if (one->slot == 8 && slots.appDisplayed) slots.appDisplayed(t[0], t[1]);
    if (one->slot == 9 && slots.accountListUpdated) slots.accountListUpdated(t[0], t[1], n);
    return NULL;
}

/* One event, on a thread of its own. */
void fakeEvent(int slot, const char* const* texts, int number, double progress, int flag) {
    struct event one;
    pthread_t thread;
    one.slot = slot;
    one.texts = texts;
    one.number = number;
    one.progress = progress;
    one.flag = flag;
    pthread_create(&thread, NULL, sendOne, &one);
    pthread_join(thread, NULL);
}

static void* sendUntilEnd(void* unused) {
    (void)unused;
    while (flooding) slots.appDisplayed("N", "p");
    return NULL;
}

/* One event after another, until bridgeApiFini, which waits for the callback as the library does.
 */
void fakeFlood(void) {
    flooding = 1;
    pthread_create(&flood, NULL, sendUntilEnd, NULL);
}

bridge_i32 bridgeApiInit(const char* clientId) {
    keptClient = clientId;
    return note("bridgeApiInit %s", shown(clientId));
}
bridge_i32 bridgeApiInitEx(const char* clientId, bridge_bool noConfFile, bridge_i64 reserved,
                           const char* logFilePath) {
    keptClient = clientId;
    return note("bridgeApiInitEx %s %d %lld %s", shown(clientId), noConfFile, reserved,
                shown(logFilePath));
}
bridge_i32 bridgeApiFini(void) {
    if (flooding) {
        flooding = 0;
        pthread_join(flood, NULL);
    }
    note("bridgeApiFini");
    return 0;
}
bridge_bool bridgeConfGetBool(const char* key) {
    note("bridgeConfGetBool %s", shown(key));
    if (valueOf(key) != NULL) return strcmp(valueOf(key), "1") == 0;
    return strcmp(key, "true") == 0;
}
bridge_i32 bridgeConfGetI32(const char* key) {
    note("bridgeConfGetI32 %s", shown(key));
    if (valueOf(key) != NULL) return atoi(valueOf(key));
    return -2147483647;
}
bridge_i64 bridgeConfGetI64(const char* key) {
    note("bridgeConfGetI64 %s", shown(key));
    return -9007199254740993;
}
char* bridgeConfGetString(const char* key) {
    note("bridgeConfGetString %s", shown(key));
    if (valueOf(key) != NULL) return textFor(NULL, valueOf(key));
    return textFor(key, strcmp(key, "empty") == 0 ? "" : "Größe 日本 😀");
}
char* bridgeConfGetMultiString(const char* key) {
    note("bridgeConfGetMultiString %s", shown(key));
    if (valueOf(key) != NULL) return textFor(NULL, valueOf(key));
    return textFor(key, strcmp(key, "empty") == 0 ? "" : "Bilder,Größe");
}
char* bridgeConfGetInstances(void) {
    note("bridgeConfGetInstances");
    if (valueOf("bridgeConfGetInstances") != NULL)
        return textFor(NULL, valueOf("bridgeConfGetInstances"));
    return textFor(NULL,
                   "[{\"instance\":\"Nougat64\",\"deviceProfile\":\"s21u\",\"graphicsEngine\":"
                   "\"aga\",\"graphicsRenderer\":\"dx\",\"imageName\":\"Nougat64\","
                   "\"displayName\":\"Größe\",\"ram\":4096,\"cpu\":4}]");
}
void bridgeFreeMemory(void* memory) {
    if (memory == NULL) return;
    __sync_fetch_and_sub(&liveTexts, 1);
    free(memory);
}
void bridgeRegisterCallbacks(bridgeOnAppInstalled onAppInstalled,
                             bridgeOnAppUninstalled onAppUninstalled,
                             bridgeOnApkInstallCompleted onApkInstallCompleted,
                             bridgeOnInstanceListUpdated onInstanceListUpdated,
                             bridgeInstallImageProgress installImageProgress,
                             bridgeOnCreateInstanceCompleted onCreateInstanceCompleted,
                             bridgeOnInstanceConfigurationChanged onInstanceConfigurationChanged,
                             bridgeOnAppDisplayed onAppDisplayed,
                             bridgeOnAccountListUpdated onAccountListUpdated) {
    slots.appInstalled = onAppInstalled;
    slots.appUninstalled = onAppUninstalled;
    slots.apkInstallCompleted = onApkInstallCompleted;
    slots.instanceListUpdated = onInstanceListUpdated;
    slots.installImageProgress = installImageProgress;
    slots.createInstanceCompleted = onCreateInstanceCompleted;
    slots.instanceConfigurationChanged = onInstanceConfigurationChanged;
    slots.appDisplayed = onAppDisplayed;
    slots.accountListUpdated = onAccountListUpdated;
    note("bridgeRegisterCallbacks");
}
char* bridgeGetInstalledApps(const char* instance) {
    note("bridgeGetInstalledApps %s", shown(instance));
    if (valueOf("bridgeGetInstalledApps") != NULL)
        return textFor(valueOf("bridgeGetInstalledApps"), valueOf("bridgeGetInstalledApps"));
    return textFor(instance,
                   "[{\"package\":\"com.größe\",\"activity\":\"Main\",\"appLabel\":\"第二\","
                   "\"versionCode\":-5,\"versionName\":\"1.0β\",\"iconFilePath\":\"a.png\"}]");
}
