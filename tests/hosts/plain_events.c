#include "plain_events.h"

#include <ProgramFunctions.h>
#include <bridge/bridge.h>
#include <locale.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "support/event_table.h"

static DWORD mainThread;
static DWORD eventThread;
static HANDLE arrived;
static volatile LONG begun;
static volatile LONG arrivals;
static DWORD blockFor;
static const WCHAR* blockUntil;
static int reenters;
static const char* insidePath;
static int quiet;
static unsigned long digest;

static const unsigned long kSumOfNothing = 2166136261ul;

static unsigned long addToSum(unsigned long sum, const char* text) {
    for (; *text != '\0'; ++text) {
        sum = ((sum ^ (unsigned char)*text) * 16777619ul) & 0xFFFFFFFFul;
    }
    return sum;
}

/* A long text is shown as its length and its FNV-1a hash. */
static const char* shown(const char* text) {
    static char sums[8][40];
    static int nextSum;
    const size_t length = strlen(text);
    char* place;
    if (length <= 200) return text;
    place = sums[nextSum++ % 8];
    sprintf(place, "#%lu:%lu", (unsigned long)length, addToSum(kSumOfNothing, text));
    return place;
}

/* Compares a text of the library's, and frees it. */
static int isText(char* text, const char* expected) {
    const int same = text != NULL && strcmp(text, expected) == 0;
    bridgeFreeMemory(text);
    return same;
}

/* Reads, sets and commits the configuration inside a callback. */
static void useConfiguration(void) {
    const int dpi = 100 + (int)arrivals;
    char* list = bridgeConfGetInstances();
    char line[200];
    int set = bridgeConfSetI32("vtr.instance.Nougat64.dpi", dpi);
    int read = bridgeConfGetI32("vtr.instance.Nougat64.dpi") == dpi;
    set += bridgeConfSetBool("vtr.enable_statusbar", dpi % 2 == 0);
    read += bridgeConfGetBool("vtr.enable_statusbar") == (dpi % 2 == 0);
    sprintf(line, "place %d", dpi);
    set += bridgeConfSetString("vtr.locale", line);
    read += isText(bridgeConfGetString("vtr.locale"), line);
    set += bridgeConfSetMultiString("vtr.shared_folders", line);
    read += isText(bridgeConfGetMultiString("vtr.shared_folders"), line);
    /* No key has the type of these two functions. */
    read += bridgeConfGetI64(NULL) == 0 && bridgeConfSetI64(NULL, 1) == BRIDGE_INVALID_ARGUMENT;
    sprintf(line, "inside: read %d, set %d, list %d, commit %d", read, set, list != NULL,
            bridgeConfCommit());
    sprintf(line + strlen(line), ", to a file %d", bridgeConfCommitToFile(insidePath));
    printLine(line);
    bridgeFreeMemory(list);
}

/* Tries to start programs, none of which exists, and calls bridgeApiFini, which has no effect here.
 */
static void usePrograms(void) {
    char* const apps = bridgeGetInstalledApps("Nougat64");
    char line[200];
    static const char* const texts[] = {PROGRAM_SAMPLES};
#define PLUS(function, count, arguments) +function arguments
    const int launched = PROGRAM_FUNCTIONS(PLUS);
#undef PLUS
    const int asked = bridgePlrShutdown("Nougat64", 0);
    bridgeShutdown();
    sprintf(line, "inside: launched %d, asked %d, apps %d, ended %d", launched, asked, apps != NULL,
            bridgeApiFini());
    printLine(line);
    bridgeFreeMemory(apps);
}

static void registerMask(unsigned long mask);
static unsigned long registered;

/* Every call must come on the same thread, which is not the main one. */
static const char* place(void) {
    const DWORD thread = GetCurrentThreadId();
    if (eventThread == 0) eventThread = thread;
    return thread == eventThread && thread != mainThread ? "" : " ON THE WRONG THREAD";
}

/* Adds a field: a letter, 't', 'i', 'd' or 'b', is followed by the value. */
static void addField(char* line, int letter, va_list* arguments) {
    char* const end = line + strlen(line);
    if (letter == 't')
        strcpy(end, shown(va_arg(*arguments, const char*)));
    else if (letter == 'd')
        sprintf(end, "%.3f", va_arg(*arguments, double));
    else
        sprintf(end, "%d", va_arg(*arguments, int));
}

/* Prints an event in one piece, unless the host is quiet, and counts it. 0 ends the list. */
static void happened(const char* name, ...) {
    char line[4096];
    const char* before = " ";
    int letter;
    va_list arguments;
    InterlockedIncrement(&begun);
    SetEvent(arrived);
    if (reenters) {
        useConfiguration();
        usePrograms();
        registerMask(registered);
    }
    Sleep(blockFor);
    blockFor = 0;
    if (blockUntil != NULL) awaitFile(blockUntil);
    blockUntil = NULL;
    strcpy(line, name);
    va_start(arguments, name);
    while ((letter = va_arg(arguments, int)) != 0) {
        strcat(line, before);
        before = "|";
        addField(line, letter, &arguments);
    }
    va_end(arguments);
    strcat(line, place());
    if (quiet)
        digest = addToSum(addToSum(digest, line), "\n");
    else
        printLine(line);
    InterlockedIncrement(&arrivals);
    SetEvent(arrived);
}

/* A callback for each event. */
#define TEXT_PARAMETER(name, example) const char* name
#define I32_PARAMETER(name, example) bridge_i32 name
#define DOUBLE_PARAMETER(name, example) double name
#define FLAG_PARAMETER(name, example) bridge_bool name
#define PARAMETERS(slot) \
    FIELDS_##slot(TEXT_PARAMETER, I32_PARAMETER, DOUBLE_PARAMETER, FLAG_PARAMETER, void)
#define TEXT_ARGUMENT(name, example) 't', name
#define I32_ARGUMENT(name, example) 'i', name
#define DOUBLE_ARGUMENT(name, example) 'd', name
#define FLAG_ARGUMENT(name, example) 'b', name
#define ARGUMENTS(slot) \
    FIELDS_##slot(TEXT_ARGUMENT, I32_ARGUMENT, DOUBLE_ARGUMENT, FLAG_ARGUMENT, 0)
#define DEFINE(opcode, type, slot, printed, name) \
    static void BRIDGE_CALL slot(PARAMETERS(slot)) { happened(#printed, ARGUMENTS(slot), 0); }
KNOWN_EVENTS(DEFINE, )

static void registerMask(unsigned long mask) {
#define IF_WANTED(opcode, type, slot, printed, name) mask >> (opcode - 3000) & 1 ? slot : NULL
    registered = mask;
    bridgeRegisterCallbacks(KNOWN_EVENTS(IF_WANTED, KNOWN_EVENTS_COMMA));
#undef IF_WANTED
}

void awaitFile(const WCHAR* path) {
    while (GetFileAttributesW(path) == INVALID_FILE_ATTRIBUTES) Sleep(5);
}

static void waitUntilServed(const WCHAR* client) {
    WCHAR path[100];
    int i;
    wsprintfW(path, L"\\\\.\\pipe\\vtr_%s_bridge_nvo", client);
    for (i = 0; i < 2000 && !WaitNamedPipeW(path, 1); ++i) Sleep(5);
    printLine(i < 2000 ? "served" : "NOT SERVED");
}

/* Waits until the count reaches the number. */
static void waitFor(const volatile LONG* count, LONG wanted) {
    while (*count < wanted && WaitForSingleObject(arrived, 30000) == WAIT_OBJECT_0) {
    }
    printNumber("waited", (int)*count);
}

void printGrowth(const char* name, const Growth* growth) {
    char line[100];
    sprintf(line, "%s: handles %ld, bytes %ld", name, growthOfHandles(growth),
            (long)growthOfBytes(growth));
    printLine(line);
}

static void steady(void) {
    static Growth growth;
    growthNote(&growth);
    if (growth.noted <= GROWTH_BATCHES)
        printLine("noted");
    else
        printGrowth("steady", &growth);
}

/* A copy of the library that is loaded at run time. */
typedef struct {
    HMODULE library;
    bridge_i32(BRIDGE_CALL* init)(const char*, bridge_bool, bridge_i64, const char*);
    bridge_i32(BRIDGE_CALL* fini)(void);
    char*(BRIDGE_CALL* getString)(const char*);
    bridge_i32(BRIDGE_CALL* setString)(const char*, const char*);
    bridge_i32(BRIDGE_CALL* commit)(void);
    void(BRIDGE_CALL* freeMemory)(void*);
    bridge_i32(BRIDGE_CALL* shutdown)(const char*, bridge_bool);
    __typeof__(bridgeRegisterCallbacks)* reg;
} Copy;

typedef void (*AnyCallback)(void);

/* Registers one callback. */
static void registerOnly(__typeof__(bridgeRegisterCallbacks)* reg, int wanted,
                         AnyCallback callback) {
#define IF_WANTED(opcode, type, slot, printed, name) (type)(opcode == wanted ? callback : NULL)
    reg(KNOWN_EVENTS(IF_WANTED, KNOWN_EVENTS_COMMA));
#undef IF_WANTED
}

static int load(Copy* copy, const WCHAR* path) {
    HMODULE library = LoadLibraryW(path);
    if (library == NULL) return 0;
    copy->library = library;
#define FIND(member, name) (*(FARPROC*)& copy->member = GetProcAddress(library, name)) != NULL
    return FIND(init, "bridgeApiInitEx") && FIND(fini, "bridgeApiFini") &&
           FIND(getString, "bridgeConfGetString") && FIND(setString, "bridgeConfSetString") &&
           FIND(commit, "bridgeConfCommit") && FIND(freeMemory, "bridgeFreeMemory") &&
           FIND(shutdown, "bridgePlrShutdown") && FIND(reg, "bridgeRegisterCallbacks");
#undef FIND
}

static int unload(const Copy* copy, const WCHAR* path) {
    FreeLibrary(copy->library);
    return GetModuleHandleW(path) == NULL;
}

/* The event that the configuration of the instance "N" has changed. */
static const unsigned char kChanged[] = {0xBE, 0x0B, 0, 0, 18, 0, 0, 0,   0,
                                         0,    0,    0, 2, 0,  0, 0, 'N', 0};

static void BRIDGE_CALL countChange(const char* instance) {
    if (strcmp(instance, "N") == 0) InterlockedIncrement(&arrivals);
    SetEvent(arrived);
}

/* Connects to the server of "Installer" as soon as it serves, and sends an event. */
static int sendChange(void) {
    static const WCHAR path[] = L"\\\\.\\pipe\\vtr_Installer_bridge_nvo";
    HANDLE pipe = INVALID_HANDLE_VALUE;
    DWORD written = 0;
    int i;
    for (i = 0; i < 5000 && pipe == INVALID_HANDLE_VALUE; ++i) {
        pipe = CreateFileW(path, GENERIC_READ | GENERIC_WRITE, 0, NULL, OPEN_EXISTING, 0, NULL);
        if (pipe == INVALID_HANDLE_VALUE) Sleep(1);
    }
    if (pipe == INVALID_HANDLE_VALUE) return 0;
    WriteFile(pipe, kChanged, sizeof kChanged, &written, NULL);
    CloseHandle(pipe);
    return written == sizeof kChanged;
}

/* One event, one change of the configuration, one request. */
static int useCopy(const Copy* copy, const char* player, int life) {
    const LONG before = arrivals;
    char text[20];
    char* read;
    int ok;
    if (!sendChange()) return 0;
    while (arrivals == before && WaitForSingleObject(arrived, 30000) == WAIT_OBJECT_0) {
    }
    sprintf(text, "life %d", life);
    if (arrivals != before + 1 || copy->setString("vtr.locale", text) != 0) return 0;
    read = copy->getString("vtr.locale");
    ok = read != NULL && strcmp(read, text) == 0;
    copy->freeMemory(read);
    return ok && copy->commit() == 0 && copy->shutdown(player, 0) == 0;
}

/* Loads, initialises, finishes and unloads a copy; uses it if there is a player. */
static int live(const WCHAR* path, const char* player, int life) {
    Copy copy;
    int ok = load(&copy, path) && copy.init("Installer", 0, 0, "NUL") == 0;
    if (!ok) return 0;
    registerOnly(copy.reg, 3006, (AnyCallback)countChange);
    if (player != NULL) ok = useCopy(&copy, player, life);
    ok &= copy.fini() == 0;
    return unload(&copy, path) && ok;
}

/*
 * Growth that the library does not cause: Wine 10's C runtime keeps a small block for each
 * setlocale, and its heap keeps the block's bucket. The smallest bucket has 31 blocks.
 */
static void setLocaleAmongSmallBlocks(void) {
    enum { BLOCKS = 64, SMALL = 40 };
    static char*(__cdecl * set)(int, const char*);
    void* blocks[BLOCKS];
    int i;
    if (set == NULL) {
        *(FARPROC*)&set = GetProcAddress(LoadLibraryW(L"ucrtbase.dll"), "setlocale");
    }
    for (i = 0; i < BLOCKS; ++i) {
        if (i == BLOCKS / 2) set(LC_ALL, ".UTF8");
        blocks[i] = HeapAlloc(GetProcessHeap(), 0, SMALL);
    }
    for (i = 0; i < BLOCKS; ++i) HeapFree(GetProcessHeap(), 0, blocks[i]);
}

static void control(int rounds) {
    Growth growth = {{0}, {0}, 0};
    int batch;
    int i;
    for (i = 0; i < rounds; ++i) setLocaleAmongSmallBlocks();
    growthNote(&growth);
    for (batch = 0; batch < GROWTH_BATCHES; ++batch) {
        for (i = 0; i < rounds; ++i) setLocaleAmongSmallBlocks();
        growthNote(&growth);
    }
    printGrowth("control", &growth);
}

/* The warm-up may leave free blocks that later cycles use. */
static void loadUnload(const WCHAR* path, int count, const char* player) {
    const int warmUp = 20;
    const int rounds = count / GROWTH_BATCHES;
    Growth growth = {{0}, {0}, 0};
    int good = 0;
    int i;
    char line[100];
    for (i = 0; i < warmUp + count; ++i) {
        if (i >= warmUp && (i - warmUp) % rounds == 0) growthNote(&growth);
        good += live(path, i % 2 == 0 ? player : NULL, i);
    }
    growthNote(&growth);
    sprintf(line, "lives %d, events %d", good, (int)arrivals);
    printLine(line);
    printGrowth("lives", &growth);
    control(rounds);
}

static int loadOnly(const WCHAR* path) {
    Copy copy;
    if (!load(&copy, path)) return -1;
    printNumber("init", copy.init("Installer", 1, 0, "NUL"));
    registerOnly(copy.reg, 0, NULL);
    return unload(&copy, path);
}

static DWORD WINAPI endProcess(LPVOID unused) {
    (void)unused;
    exit(0);
}

static void endFromAnotherThread(void) {
    CreateThread(NULL, 0, endProcess, NULL, 0, NULL);
    Sleep(INFINITE);
}

int eventOperation(const char* name) {
    if (strcmp(name, "register") == 0) {
        registerMask(strtoul(next(), NULL, 10));
    } else if (strcmp(name, "reenter") == 0) {
        const unsigned long mask = strtoul(next(), NULL, 10);
        reenters = 1;
        insidePath = next();
        registerMask(mask);
    } else if (strcmp(name, "block") == 0) {
        blockFor = strtoul(next(), NULL, 10);
    } else if (strcmp(name, "blockuntil") == 0) {
        blockUntil = nextWide();
    } else if (strcmp(name, "quiet") == 0) {
        quiet = 1;
        digest = kSumOfNothing;
    } else if (strcmp(name, "digest") == 0) {
        char line[40];
        sprintf(line, "digest %lu", digest);
        printLine(line);
    } else if (strcmp(name, "served") == 0) {
        waitUntilServed(nextWide());
    } else if (strcmp(name, "wait") == 0) {
        waitFor(&arrivals, atoi(next()));
    } else if (strcmp(name, "waitbegun") == 0) {
        waitFor(&begun, atoi(next()));
    } else if (strcmp(name, "steady") == 0) {
        steady();
    } else if (strcmp(name, "loadunload") == 0) {
        const WCHAR* path = nextWide();
        const int count = atoi(next());
        loadUnload(path, count, next());
    } else if (strcmp(name, "plugin") == 0) {
        printNumber(name, LoadLibraryW(nextWide()) != NULL);
    } else if (strcmp(name, "loadonly") == 0) {
        printNumber("unloaded", loadOnly(nextWide()));
    } else if (strcmp(name, "exit") == 0) {
        exit(0);
    } else if (strcmp(name, "exitthread") == 0) {
        endFromAnotherThread();
    } else {
        return 0;
    }
    return 1;
}

void prepareEvents(void) {
    mainThread = GetCurrentThreadId();
    arrived = CreateEventW(NULL, FALSE, FALSE, NULL);
}
