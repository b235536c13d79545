/*
 * A host that loads the library on a thread, uses it, unloads it, and ends the thread. The end of
 * the thread calls any callback that the DLLs have left registered. In C, with the older C runtime,
 * and without an import of the library. The arguments are a data folder and the use:
 *
 *     none      the initialisation only
 *     apps      a listing of apps for which Qt5Core gets no memory
 *     request   a request for which Qt5Core gets no memory
 *     event     waits for a list update
 *
 * It prints the functions' results, and which modules are loaded after the unload.
 */
#include "plain_registry.h"

#include <bridge/bridge.h>
#include <stdio.h>
#include <string.h>

#include "support/event_table.h"

/* Last: it needs <windows.h>. */
#include <shellapi.h>

typedef struct {
    HMODULE library;
    bridge_i32(BRIDGE_CALL* init)(const char*);
    bridge_i32(BRIDGE_CALL* fini)(void);
    char*(BRIDGE_CALL* apps)(const char*);
    bridge_i32(BRIDGE_CALL* shutdown)(const char*, bridge_bool);
    __typeof__(bridgeRegisterCallbacks)* reg;
} Library;

static const WCHAR* use;
static HANDLE arrived;

static int load(Library* own) {
    own->library = LoadLibraryW(L"QX-Bridge.dll");
    if (own->library == NULL) return 0;
#define FIND(member, name) (*(FARPROC*)& own->member = GetProcAddress(own->library, name)) != NULL
    return FIND(init, "bridgeApiInit") && FIND(fini, "bridgeApiFini") &&
           FIND(apps, "bridgeGetInstalledApps") && FIND(shutdown, "bridgePlrShutdown") &&
           FIND(reg, "bridgeRegisterCallbacks");
#undef FIND
}

static void printNumber(const char* name, int number) {
    printf("%s %d\n", name, number);
    fflush(stdout);
}

/* The entry of a function in a module's import table. */
static void** importOf(HMODULE importer, const char* wanted) {
    char* const base = (char*)importer;
    const IMAGE_NT_HEADERS* headers =
        (const IMAGE_NT_HEADERS*)(base + ((const IMAGE_DOS_HEADER*)base)->e_lfanew);
    const IMAGE_DATA_DIRECTORY* directory =
        &headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    const IMAGE_IMPORT_DESCRIPTOR* module =
        (const IMAGE_IMPORT_DESCRIPTOR*)(base + directory->VirtualAddress);
    for (; module->Name != 0; ++module) {
        const IMAGE_THUNK_DATA* name = (const IMAGE_THUNK_DATA*)(base + module->OriginalFirstThunk);
        void** place = (void**)(base + module->FirstThunk);
        for (; name->u1.AddressOfData != 0; ++name, ++place) {
            if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal)) continue;
            if (strcmp(base + name->u1.AddressOfData + 2, wanted) == 0) return place;
        }
    }
    return NULL;
}

static int refusals;

static void* noMemory(size_t size) {
    (void)size;
    ++refusals;
    return NULL;
}

/* Replaces an entry, and returns the previous one. */
static void* replace(void** place, void* function) {
    void* const before = *place;
    DWORD protection;
    VirtualProtect(place, sizeof *place, PAGE_READWRITE, &protection);
    *place = function;
    VirtualProtect(place, sizeof *place, protection, &protection);
    return before;
}

static void useWithoutMemory(const Library* own) {
    void** const place = importOf(GetModuleHandleW(L"Qt5Core.dll"), "malloc");
    void* const before = replace(place, (void*)noMemory);
    if (lstrcmpW(use, L"apps") == 0)
        printNumber("apps", own->apps("Nougat64") != NULL);
    else
        printNumber("shutdown", own->shutdown("nobody", 0));
    replace(place, before);
    printNumber("refused", refusals > 0);
}

typedef void (*AnyCallback)(void);

static void BRIDGE_CALL onApkInstallCompleted(const char* instance, bridge_i32 status,
                                              const char* apkFilePath) {
    (void)instance;
    (void)status;
    (void)apkFilePath;
}

static void BRIDGE_CALL onInstanceListUpdated(void) { SetEvent(arrived); }

/* The callback for an opcode. Slots 3 and 4 go together. */
static AnyCallback callbackOf(int opcode) {
    if (opcode == 3002) return (AnyCallback)onApkInstallCompleted;
    return opcode == 3003 ? onInstanceListUpdated : NULL;
}

static void waitForEvent(const Library* own) {
#define ARGUMENT(opcode, type, slot, printed, name) (type) callbackOf(opcode)
    own->reg(KNOWN_EVENTS(ARGUMENT, KNOWN_EVENTS_COMMA));
    printNumber("arrived", WaitForSingleObject(arrived, 60000) == WAIT_OBJECT_0);
}

static DWORD WINAPI live(LPVOID unused) {
    Library own;
    (void)unused;
    if (!load(&own)) return 1;
    printNumber("init", own.init("Helper"));
    if (lstrcmpW(use, L"apps") == 0 || lstrcmpW(use, L"request") == 0) useWithoutMemory(&own);
    if (lstrcmpW(use, L"event") == 0) waitForEvent(&own);
    printNumber("fini", own.fini());
    FreeLibrary(own.library);
    printNumber("QX-Bridge", GetModuleHandleW(L"QX-Bridge.dll") != NULL);
    printNumber("Qt5Core", GetModuleHandleW(L"Qt5Core.dll") != NULL);
    return 0;
}

int main(void) {
    int count;
    WCHAR** const arguments = CommandLineToArgvW(GetCommandLineW(), &count);
    HANDLE thread;
    DWORD result = 0;
    SetErrorMode(SEM_NOGPFAULTERRORBOX);
    if (count != 3) return 97;
    sandboxRegistry();
    setProductText(L"UserDefinedDir", arguments[1]);
    use = arguments[2];
    arrived = CreateEventW(NULL, FALSE, FALSE, NULL);
    thread = CreateThread(NULL, 0, live, NULL, 0, NULL);
    WaitForSingleObject(thread, INFINITE);
    GetExitCodeThread(thread, &result);
    printNumber("ended", (int)result);
    return 0;
}
