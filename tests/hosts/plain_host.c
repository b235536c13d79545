/*
 * A host as C programmers write it: no Qt, no C++, the older C runtime, the library through its
 * import library. It plays a script given as arguments, one operation after another, and prints
 * what each one answered, as UTF-8:
 *
 *     registry NAME TEXT   a REG_SZ value that only this process sees
 *     sandbox              an empty product key that only this process sees
 *     init CLIENT | initex CLIENT NOCONF LOG | fini
 *     preflight CLIENT NOCONF LOG | shortpreflight CLIENT   into a buffer of 20 bytes
 *     getbool KEY | geti32 KEY | geti64 KEY | getstr KEY | getmulti KEY
 *     setbool KEY N | seti32 KEY N | setstr KEY TEXT | setmulti KEY TEXT
 *     commit | committo PATH | instances | freenull
 *     startcommit | endcommit   commits on another thread; prints its answer
 *     takelock | leavelock      the lock of the file, as another program has it
 *     awaitfile PATH
 *     bridgeLaunchApp INSTANCE PACKAGE, and each other function that starts a program
 *     plrshutdown INSTANCE N | shutdown | shutdownmany INSTANCE COUNT | apps INSTANCE
 *     hold KEY             reads a text, changes the key, and prints the text read before
 *
 * "(null)" stands for a null pointer. plain_events.h has the operations on events, plain_children.h
 * those with children.
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

static void awaitFile(const WCHAR* path) {
    while (GetFileAttributesW(path) == INVALID_FILE_ATTRIBUTES) Sleep(5);
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

static int configurationOperation(const char* name) {
    const char* key;
    if (strcmp(name, "commit") == 0) {
        printNumber(name, bridgeConfCommit());
        return 1;
    }
    if (strcmp(name, "instances") == 0) {
        printText(name, bridgeConfGetInstances());
        return 1;
    }
    if (strcmp(name, "freenull") == 0) {
        bridgeFreeMemory(NULL);
        return 1;
    }
    key = next();
    if (strcmp(name, "committo") == 0)
        printNumber(name, bridgeConfCommitToFile(key));
    else if (strcmp(name, "getbool") == 0)
        printNumber(name, bridgeConfGetBool(key));
    else if (strcmp(name, "geti32") == 0)
        printNumber(name, bridgeConfGetI32(key));
    else if (strcmp(name, "geti64") == 0)
        printNumber(name, (int)bridgeConfGetI64(key));
    else if (strcmp(name, "getstr") == 0)
        printText(name, bridgeConfGetString(key));
    else if (strcmp(name, "getmulti") == 0)
        printText(name, bridgeConfGetMultiString(key));
    else if (strcmp(name, "hold") == 0)
        hold(key);
    else if (strcmp(name, "setbool") == 0)
        printNumber(name, bridgeConfSetBool(key, (bridge_bool)atoi(next())));
    else if (strcmp(name, "seti32") == 0)
        printNumber(name, bridgeConfSetI32(key, atoi(next())));
    else if (strcmp(name, "seti64") == 0)
        printNumber(name, bridgeConfSetI64(key, atoi(next())));
    else if (strcmp(name, "setstr") == 0)
        printNumber(name, bridgeConfSetString(key, next()));
    else if (strcmp(name, "setmulti") == 0)
        printNumber(name, bridgeConfSetMultiString(key, next()));
    else
        return 0;
    return 1;
}

static void initex(void) {
    const char* client = next();
    const int noConf = atoi(next());
    const char* log = next();
    printNumber("initex", bridgeApiInitEx(client, (bridge_bool)noConf, 0, log));
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

/* Many requests to one player: how many failed, and what is left over of those after a warm-up. */
static void shutdownMany(const char* instance, int count) {
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

/* The functions that start a program, by their names. */
#define DEFINE(function, count, arguments) \
    static int call_##function(const char* const* texts) { return function arguments; }
PROGRAM_FUNCTIONS(DEFINE)
#undef DEFINE

static const struct {
    const char* name;
    int texts;
    int (*call)(const char* const* texts);
} programFunctions[] = {
#define ROW(function, count, arguments) {#function, count, call_##function},
    PROGRAM_FUNCTIONS(ROW)
#undef ROW
};

static int programOperation(const char* name) {
    const char* texts[PROGRAM_TEXTS] = {NULL};
    size_t i = 0;
    int place;
    while (strcmp(programFunctions[i].name, name) != 0) {
        if (++i == sizeof programFunctions / sizeof *programFunctions) return 0;
    }
    for (place = 0; place < programFunctions[i].texts; ++place) texts[place] = next();
    printNumber(name, programFunctions[i].call(texts));
    return 1;
}

static int requestOperation(const char* name) {
    const char* instance;
    if (strcmp(name, "shutdown") == 0) {
        bridgeShutdown();
        return 1;
    }
    if (strcmp(name, "plrshutdown") != 0 && strcmp(name, "shutdownmany") != 0) return 0;
    instance = next();
    if (strcmp(name, "plrshutdown") == 0)
        printNumber(name, bridgePlrShutdown(instance, (bridge_bool)atoi(next())));
    else
        shutdownMany(instance, atoi(next()));
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
        else if (strcmp(name, "init") == 0)
            printNumber(name, bridgeApiInit(next()));
        else if (strcmp(name, "initex") == 0)
            initex();
        else if (strcmp(name, "preflight") == 0)
            preflight();
        else if (strcmp(name, "shortpreflight") == 0)
            shortPreflight();
        else if (strcmp(name, "fini") == 0)
            printNumber(name, bridgeApiFini());
        else if (strcmp(name, "apps") == 0)
            printText(name, bridgeGetInstalledApps(next()));
        else if (!eventOperation(name) && !childrenOperation(name) && !programOperation(name) &&
                 !requestOperation(name) && !commitOperation(name) && !configurationOperation(name))
            return 98;
    }
    return 0;
}
