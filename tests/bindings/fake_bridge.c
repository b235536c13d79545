/*
 * A stand-in for QX-Bridge.dll on this system. Each export of bridge.h records its calls.
 * recorder.py generates those that do nothing else, and the compiler checks all of them against
 * the header. Tests read the calls, set results and send events with the fake... functions.
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

/* The results of reads, by key, and of listings, by function. "null" is a null pointer. */
static struct {
    char* name;
    char* text;
} values[1024];
static size_t valueCount;

static struct slots {
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

static const char* valueOr(const char* name, const char* text) {
    size_t i;
    for (i = 0; i < valueCount; ++i) {
        if (strcmp(values[i].name, name) == 0) return values[i].text;
    }
    return text;
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

/* Sets a function that each call invokes with its line before it returns. */
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

/* An event: the text parameters of its callback in order, and the other values. */
struct event {
    int slot; /* from 1, in the order of bridge.h */
    const char* texts[6];
    int number;
    double progress;
    int flag;
};

static const struct event fullEvents[] = {
    {1, {"Nougat64", "com.größe", "Main", "第二 App", "1.0β", "C:\\Ü.png"}, -5, 0, 1},
    {2, {"Nougat64", "com.größe"}, 0, 0, 0},
    {3, {"Nougat64", "C:\\П.apk"}, -1, 0, 0},
    {4, {""}, 0, 0, 0},
    {5, {"Nougat32"}, 1, 33.125, 0},
    {6, {"Nougat64_1"}, -2, 0, 0},
    {7, {"Nougat64"}, 0, 0, 0},
    {8, {"Nougat64", "😀"}, 0, 0, 0},
    {9, {"Nougat64", "jürgen@example.com"}, 2, 0, 0}};

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

static void* sendAll(void* full) {
    size_t i;
    for (i = 0; i < sizeof fullEvents / sizeof *fullEvents; ++i) {
        struct event one = {0, {"", "", "", "", "", ""}, 0, 0, 0};
        if (full != NULL) one = fullEvents[i];
        one.slot = fullEvents[i].slot;
        sendOne(&one);
    }
    return NULL;
}

/* Runs a function on a new thread, which the binding has never seen. */
static void onThread(void* (*function)(void*), void* argument) {
    pthread_t thread;
    pthread_create(&thread, NULL, function, argument);
    pthread_join(thread, NULL);
}

/* Every event once, with full or empty texts. */
void fakeSend(int full) { onThread(sendAll, full ? (void*)"full" : NULL); }

void fakeEvent(int slot, const char* const* texts, int number, double progress, int flag) {
    struct event one = {slot, {NULL}, number, progress, flag};
    memcpy(one.texts, texts, sizeof one.texts);
    onThread(sendOne, &one);
}

static void* sendUntilEnd(void* unused) {
    (void)unused;
    while (flooding) slots.appDisplayed("N", "p");
    return NULL;
}

/* One event after another until bridgeApiFini, which waits for the callback as the library does. */
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
    return strcmp(valueOr(key, "0"), "1") == 0;
}
bridge_i32 bridgeConfGetI32(const char* key) {
    note("bridgeConfGetI32 %s", shown(key));
    return atoi(valueOr(key, "-2147483647"));
}
char* bridgeConfGetString(const char* key) {
    note("bridgeConfGetString %s", shown(key));
    return textFor(NULL, valueOr(key, "Größe 日本 😀"));
}
char* bridgeConfGetMultiString(const char* key) {
    note("bridgeConfGetMultiString %s", shown(key));
    return textFor(NULL, valueOr(key, "Bilder,Größe"));
}
char* bridgeConfGetInstances(void) {
    note("bridgeConfGetInstances");
    return textFor(
        NULL, valueOr("bridgeConfGetInstances",
                      "[{\"instance\":\"Nougat64\",\"deviceProfile\":\"s21u\",\"graphicsEngine\":"
                      "\"aga\",\"graphicsRenderer\":\"dx\",\"imageName\":\"Nougat64\","
                      "\"displayName\":\"Größe\",\"ram\":4096,\"cpu\":4}]"));
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
    slots = (struct slots){onAppInstalled,
                           onAppUninstalled,
                           onApkInstallCompleted,
                           onInstanceListUpdated,
                           installImageProgress,
                           onCreateInstanceCompleted,
                           onInstanceConfigurationChanged,
                           onAppDisplayed,
                           onAccountListUpdated};
    note("bridgeRegisterCallbacks");
}
char* bridgeGetInstalledApps(const char* instance) {
    const char* apps =
        "[{\"package\":\"com.größe\",\"activity\":\"Main\",\"appLabel\":\"第二\","
        "\"versionCode\":-5,\"versionName\":\"1.0β\",\"iconFilePath\":\"a.png\"}]";
    note("bridgeGetInstalledApps %s", shown(instance));
    apps = valueOr("bridgeGetInstalledApps", apps);
    return textFor(strcmp(apps, "null") == 0 ? apps : instance, apps);
}
