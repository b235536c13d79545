/* The plain host's own children. */
#include "plain_children.h"

#include <bridge/bridge.h>
#include <stdlib.h>
#include <string.h>

#include "plain_events.h"

static volatile LONG commits;
static volatile LONG failedCommits;
static volatile LONG allStarted;

static void commitOnce(void) {
    const LONG number = InterlockedIncrement(&commits);
    bridgeConfSetI32("vtr.next_vm_id", (int)number);
    if (bridgeConfCommit() != 0) InterlockedIncrement(&failedCommits);
}

static DWORD WINAPI commitUntilAllStarted(void* unused) {
    (void)unused;
    while (!allStarted) commitOnce();
    return 0;
}

/* A child that runs as long as this process. */
static HANDLE startChild(void) {
    WCHAR self[MAX_PATH];
    WCHAR line[MAX_PATH + 64];
    STARTUPINFOW startup;
    PROCESS_INFORMATION started;
    GetModuleFileNameW(NULL, self, MAX_PATH);
    wsprintfW(line, L"\"%s\" outlive %lu", self, GetCurrentProcessId());
    memset(&startup, 0, sizeof startup);
    startup.cb = sizeof startup;
    if (!CreateProcessW(NULL, line, NULL, NULL, /*bInheritHandles=*/TRUE, 0, NULL, NULL, &startup,
                        &started)) {
        exit(96);
    }
    CloseHandle(started.hThread);
    return started.hProcess;
}

/* Starts a child, and waits for the thread's next commit. */
static HANDLE startChildBetweenCommits(void) {
    const LONG before = commits;
    const HANDLE child = startChild();
    while (commits == before) Sleep(1);
    return child;
}

static void endChild(HANDLE child) {
    TerminateProcess(child, 0);
    WaitForSingleObject(child, INFINITE);
    CloseHandle(child);
}

static void commitAmong(int childCount, int commitCount) {
    HANDLE* const children = (HANDLE*)malloc((size_t)childCount * sizeof(HANDLE));
    const HANDLE committer = CreateThread(NULL, 0, commitUntilAllStarted, NULL, 0, NULL);
    int i;
    for (i = 0; i < childCount; ++i) children[i] = startChildBetweenCommits();
    allStarted = 1;
    WaitForSingleObject(committer, INFINITE);
    CloseHandle(committer);
    printNumber("meanwhile", (int)InterlockedExchange(&failedCommits, 0));
    for (i = 0; i < commitCount; ++i) commitOnce();
    printNumber("afterwards", (int)failedCommits);
    for (i = 0; i < childCount; ++i) endChild(children[i]);
    free(children);
}

static void outlive(DWORD id) {
    const HANDLE process = OpenProcess(SYNCHRONIZE, FALSE, id);
    if (process != NULL) WaitForSingleObject(process, INFINITE);
}

int childrenOperation(const char* name) {
    if (strcmp(name, "commitamong") == 0) {
        const int children = atoi(next());
        commitAmong(children, atoi(next()));
        return 1;
    }
    if (strcmp(name, "outlive") == 0) {
        outlive((DWORD)strtoul(next(), NULL, 10));
        return 1;
    }
    return 0;
}
