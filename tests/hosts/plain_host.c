/*
 * A host in C: no Qt, the older C runtime, the library through its import library. Its arguments
 * are a script. It runs the operations in order, and prints the result of each as UTF-8:
 *
 *     registry NAME TEXT   sets a REG_SZ value that only this process sees
 *     sandbox              an empty product key that only this process sees
 *     init CLIENT | initex CLIENT NOCONF LOG | fini
 *     preflight CLIENT NOCONF LOG | shortpreflight CLIENT   into a buffer of 20 bytes
 *     getbool KEY | geti32 KEY | geti64 KEY | getstr KEY | getmulti KEY
 *     setbool KEY N | seti32 KEY N | setstr KEY TEXT | setmulti KEY TEXT
 *     commit | committo PATH | instances | freenull
 *     startcommit | endcommit   commits on another thread; prints the result
 *     takelock | leavelock      takes the file's lock, as another program would
 *     awaitfile PATH            waits until the file exists
 *     bridgeLaunchApp INSTANCE PACKAGE, and each other function that starts a program
 *     plrshutdown INSTANCE N | shutdown | shutdownmany INSTANCE COUNT | apps INSTANCE
 *     hold KEY             reads a text, changes the key, and prints the text read before
 *
 * "(null)" is a null pointer. plain_events.h has the operations on events, plain_children.h those
 * with children.
 */
#include "plain_children.h"
#include "plain_events.h"
#include "plain_registry.h"

#include <ProgramFunctions.h>
#include <bridge/bridge.h>
#include <bridge/preflight.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

/* Last: it needs <windows.h>. */
#include <shellapi.h>

static WCHAR** wideArguments;
static int argumentCount;
static int argumentIndex = 1;

/* The next argument as UTF-8, in memory that is never freed; NULL for "(null)". */
const char* next(void) {
    int size;
    char* text;
    if (argumentIndex >= argumentCount) exit(97);
    size = WideCharToMultiByte(CP_UTF8, 0, wideArguments[argumentIndex], -1, NULL, 0, NULL, NULL);
    text = (char*)malloc((size_t)size);
    WideCharToMultiByte(CP_UTF8, 0, wideArguments[argumentIndex], -1, text, size, NULL, NULL);
    ++argumentIndex;
    return strcmp(text, "(null)") == 0 ? NULL : text;
}

const WCHAR* nextWide(void) { return wideArguments[argumentIndex++]; }

static void registry(void) {
    const WCHAR* name = nextWide();
    setProductText(name, nextWide());
}

void printLine(const char* line) {
    const size_t length = strlen(line);
    char* const whole = (char*)malloc(length + 1);
    DWORD written;
    memcpy(whole, line, length);
    whole[length] = '\n';
    WriteFile(GetStdHandle(STD_OUTPUT_HANDLE), whole, (DWORD)length + 1, &written, NULL);
    free(whole);
}

static void printText(const char* name, char* text) {
    const char* const shown = text == NULL ? "(null)" : text;
    char* const line = (char*)malloc(strlen(name) + strlen(shown) + 2);
    sprintf(line, "%s %s", name, shown);
    printLine(line);
    free(line);
    bridgeFreeMemory(text);
}

void printNumber(const char* name, int number) {
    char line[100];
    sprintf(line, "%s %d", name, number);
    printLine(line);
}

static void hold(const char* key) {
    char* text = bridgeConfGetString(key);
    bridgeConfSetString(key, "changed");
    printText("hold", text);
}

static HANDLE committer;

static DWORD WINAPI commitOnThread(void* unused) {
    (void)unused;
    return (DWORD)bridgeConfCommit();
}

static void endCommit(void) {
    DWORD answer = 0;
    WaitForSingleObject(committer, INFINITE);
    GetExitCodeThread(committer, &answer);
    CloseHandle(committer);
    printNumber("endcommit", (int)answer);
}

static HANDLE fileLock;

static void takeLock(void) {
    fileLock = CreateMutexW(NULL, FALSE, L"Global\\vtr_conf_nvo");
    WaitForSingleObject(fileLock, INFINITE);
}

/* Operations on the commit of another thread. */
static int commitOperation(const char* name) {
    if (strcmp(name, "startcommit") == 0)
        committer = CreateThread(NULL, 0, commitOnThread, NULL, 0, NULL);
    else if (strcmp(name, "endcommit") == 0)
        endCommit();
    else if (strcmp(name, "takelock") == 0)
        takeLock();
    else if (strcmp(name, "leavelock") == 0)
        ReleaseMutex(fileLock);
    else if (strcmp(name, "awaitfile") == 0)
        awaitFile(nextWide());
    else
        return 0;
    return 1;
}

static void preflight(void) {
    static char text[65536];
    const char* client = next();
    const int noConf = atoi(next());
    const char* log = next();
    printNumber("preflight", bridgePreflight(client, (bridge_bool)noConf, log, text, sizeof text));
    if (text[0] == '\0') return;
    text[strlen(text) - 1] = '\0';
    printLine(text);
}

static void shortPreflight(void) {
    char text[20];
    const char* client = next();
    printNumber("count", bridgePreflight(client, 0, NULL, NULL, 0));
    printNumber("shortpreflight", bridgePreflight(client, 0, NULL, text, sizeof text));
    printLine(text);
}

/* Sends many requests to one player; prints how many failed, and the growth after a warm-up. */
static void shutdownMany(void) {
    const char* const instance = next();
    const int count = atoi(next());
    const int warmUp = 500;
    Growth growth = {{0}, {0}, 0};
    int failed = 0;
    int i;
    for (i = 0; i < warmUp + count; ++i) {
        if (i >= warmUp && (i - warmUp) % (count / GROWTH_BATCHES) == 0) growthNote(&growth);
        failed += bridgePlrShutdown(instance, 0) != 0;
    }
    growthNote(&growth);
    printNumber("failed", failed);
    printGrowth("requests", &growth);
}

/* The arguments of operations that call one function. */
typedef const char* const* Texts;
#define FLAG(index) ((bridge_bool)atoi(texts[index]))

/* The operations that print a number: name, number of texts, call. */
#define NUMBER_OPERATIONS(ROW)                                      \
    ROW(init, 1, bridgeApiInit(texts[0]))                           \
    ROW(initex, 3, bridgeApiInitEx(texts[0], FLAG(1), 0, texts[2])) \
    ROW(fini, 0, bridgeApiFini())                                   \
    ROW(commit, 0, bridgeConfCommit())                              \
    ROW(committo, 1, bridgeConfCommitToFile(texts[0]))              \
    ROW(getbool, 1, bridgeConfGetBool(texts[0]))                    \
    ROW(geti32, 1, bridgeConfGetI32(texts[0]))                      \
    ROW(geti64, 1, (int)bridgeConfGetI64(texts[0]))                 \
    ROW(setbool, 2, bridgeConfSetBool(texts[0], FLAG(1)))           \
    ROW(seti32, 2, bridgeConfSetI32(texts[0], atoi(texts[1])))      \
    ROW(seti64, 2, bridgeConfSetI64(texts[0], atoi(texts[1])))      \
    ROW(setstr, 2, bridgeConfSetString(texts[0], texts[1]))         \
    ROW(setmulti, 2, bridgeConfSetMultiString(texts[0], texts[1]))  \
    ROW(plrshutdown, 2, bridgePlrShutdown(texts[0], FLAG(1)))

/* The operations that print a text. */
#define TEXT_OPERATIONS(ROW)                             \
    ROW(getstr, 1, bridgeConfGetString(texts[0]))        \
    ROW(getmulti, 1, bridgeConfGetMultiString(texts[0])) \
    ROW(instances, 0, bridgeConfGetInstances())          \
    ROW(apps, 1, bridgeGetInstalledApps(texts[0]))

#define DEFINE(name, count, call)          \
    static void play_##name(Texts texts) { \
        (void)texts;                       \
        printNumber(#name, call);          \
    }
NUMBER_OPERATIONS(DEFINE)
#undef DEFINE
#define DEFINE(name, count, call)          \
    static void play_##name(Texts texts) { \
        (void)texts;                       \
        printText(#name, call);            \
    }
TEXT_OPERATIONS(DEFINE)
#undef DEFINE
#define DEFINE(function, count, arguments) \
    static void play_##function(Texts texts) { printNumber(#function, function arguments); }
PROGRAM_FUNCTIONS(DEFINE)
#undef DEFINE

static const struct {
    const char* name;
    int texts;
    void (*play)(Texts texts);
} operations[] = {
#define ROW(name, count, call) {#name, count, play_##name},
    NUMBER_OPERATIONS(ROW) TEXT_OPERATIONS(ROW) PROGRAM_FUNCTIONS(ROW)
#undef ROW
};

static int tableOperation(const char* name) {
    const char* texts[PROGRAM_TEXTS] = {NULL};
    size_t i = 0;
    int index;
    while (strcmp(operations[i].name, name) != 0) {
        if (++i == sizeof operations / sizeof *operations) return 0;
    }
    for (index = 0; index < operations[i].texts; ++index) texts[index] = next();
    operations[i].play(texts);
    return 1;
}

int main(void) {
    SetErrorMode(SEM_NOGPFAULTERRORBOX);
    prepareEvents();
    wideArguments = CommandLineToArgvW(GetCommandLineW(), &argumentCount);
    while (argumentIndex < argumentCount) {
        const char* name = next();
        if (strcmp(name, "sandbox") == 0)
            sandboxRegistry();
        else if (strcmp(name, "registry") == 0)
            registry();
        else if (strcmp(name, "preflight") == 0)
            preflight();
        else if (strcmp(name, "shortpreflight") == 0)
            shortPreflight();
        else if (strcmp(name, "freenull") == 0)
            bridgeFreeMemory(NULL);
        else if (strcmp(name, "hold") == 0)
            hold(next());
        else if (strcmp(name, "shutdown") == 0)
            bridgeShutdown();
        else if (strcmp(name, "shutdownmany") == 0)
            shutdownMany();
        else if (!tableOperation(name) && !eventOperation(name) && !childrenOperation(name) &&
                 !commitOperation(name))
            return 98;
    }
    return 0;
}
