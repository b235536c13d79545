#include "process_figures.h"

#include <stdlib.h>
#include <string.h>
#include <windows.h>

/*
 * The system's theme library has 6 handles and 97 KB. The system may load it at any time, so it is
 * loaded before the first figure.
 */
static void loadThemeLibrary(void) {
    static HMODULE loaded;
    if (loaded == NULL) loaded = LoadLibraryW(L"uxtheme.dll");
}

/*
 * Wine allocates the lowest free handle, so the handles of a process have no long gaps. The table
 * of all handles cannot be used: Wine 8's server crashes on it while any process has none.
 */
static long handlesThatExist(void) {
    enum { STEP = 4, LONGEST_GAP = 1024 };
    long found = 0;
    ULONG_PTR handle;
    int gap = 0;
    for (handle = STEP; gap < LONGEST_GAP; handle += STEP) {
        DWORD flags;
        if (GetHandleInformation((HANDLE)handle, &flags)) {
            ++found;
            gap = 0;
        } else {
            ++gap;
        }
    }
    return found;
}

long openHandles(void) {
    DWORD count = 0;
    loadThemeLibrary();
    if (GetProcessHandleCount(GetCurrentProcess(), &count) && count > 0) return (long)count;
    return handlesThatExist();
}

static long long busyBytes(HANDLE heap) {
    PROCESS_HEAP_ENTRY entry;
    long long bytes = 0;
    memset(&entry, 0, sizeof entry);
    HeapLock(heap);
    while (HeapWalk(heap, &entry)) {
        if (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) bytes += entry.cbData;
    }
    HeapUnlock(heap);
    return bytes;
}

long long heapBytes(void) {
    HANDLE heaps[64];
    DWORD count;
    long long bytes = 0;
    DWORD i;
    loadThemeLibrary();
    count = GetProcessHeaps(64, heaps);
    if (count == 0 || count > 64) abort();
    for (i = 0; i < count; ++i) bytes += busyBytes(heaps[i]);
    return bytes;
}

void waitBriefly(void) { Sleep(5); }
