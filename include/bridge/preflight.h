/**
 * @file preflight.h
 * @brief Finds problems that would make bridgeApiInitEx() fail or end the process. For C and C++.
 *
 * All functions are inline and need only Windows, so a host can call them before it loads the
 * library. Strings are UTF-8.
 */
#ifndef BRIDGE_PREFLIGHT_H
#define BRIDGE_PREFLIGHT_H

#include <bridge/bridge.h>
#include <bridge/windows_calls.h>
#include <string.h>

#if defined(_WIN32)

/* Avoids warnings about unused functions. */
#if defined(__cplusplus)
#define BRIDGE_INLINE inline
#elif defined(__GNUC__) || defined(__clang__)
#define BRIDGE_INLINE static __inline__
#elif defined(_MSC_VER)
#define BRIDGE_INLINE static __inline
#else
#define BRIDGE_INLINE static
#endif

#if defined(__GNUC__) && defined(__cplusplus)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wold-style-cast" /* C has no other casts */
#pragma GCC diagnostic ignored "-Wzero-as-null-pointer-constant"
#endif

/** Size of the longest path in UTF-16 units, and of the longest string in bytes, both with NUL. */
#define BRIDGE_PREFLIGHT_PATH 2048
#define BRIDGE_PREFLIGHT_TEXT 8192

/**
 * Receives a problem.
 * @param context the pointer that the caller passed with this function
 * @param what    what is wrong
 * @param remedy  how to fix it
 */
typedef void (*bridgeOnProblem)(void* context, const char* what, const char* remedy);

/* Appends to a buffer of `room` bytes and truncates what does not fit. */
BRIDGE_INLINE void bridgePreflightAppend(char* text, size_t room, const char* more) {
    const size_t used = strlen(text);
    size_t length = strlen(more);
    if (used + 1 >= room) return;
    if (length > room - used - 1) length = room - used - 1;
    memcpy(text + used, more, length);
    text[used + length] = '\0';
}

/* Converts to UTF-16. Returns 0 when the text is too long or not UTF-8. */
BRIDGE_INLINE int bridgePreflightWide(const char* text, wchar_t* wide) {
    const unsigned int utf8 = 65001;
    const unsigned long strict = 8; /* MB_ERR_INVALID_CHARS */
    return MultiByteToWideChar(utf8, strict, text, -1, wide, BRIDGE_PREFLIGHT_PATH) > 0;
}

/* Converts a path, with the prefix for long paths if necessary. Returns 0 for an invalid path. */
BRIDGE_INLINE int bridgePreflightWidePath(const char* path, wchar_t* wide) {
    char longPath[BRIDGE_PREFLIGHT_TEXT] = "\\\\?\\";
    char* at;
    if (strlen(path) < 240 || strlen(path) > BRIDGE_PREFLIGHT_PATH - 8 || path[1] != ':') {
        return bridgePreflightWide(path, wide);
    }
    bridgePreflightAppend(longPath, sizeof longPath, path);
    for (at = longPath; *at != '\0'; ++at) {
        if (*at == '/') *at = '\\';
    }
    return bridgePreflightWide(longPath, wide);
}

/**
 * Reads a string value from the product's registry key,
 * HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantrel_nvo.
 * @param name name of the value
 * @param text buffer of BRIDGE_PREFLIGHT_TEXT bytes; empty when there is no such value
 * @return 1 if the string is not empty, else 0
 */
BRIDGE_INLINE int bridgeProductValue(const wchar_t* name, char* text) {
    struct HKEY__* const localMachine = (struct HKEY__*)(ptrdiff_t)(int)0x80000002u;
    const unsigned long access = 0x0001 | 0x0100; /* KEY_QUERY_VALUE | KEY_WOW64_64KEY */
    const unsigned long plainText = 1;            /* REG_SZ */
    wchar_t wide[BRIDGE_PREFLIGHT_PATH + 1] = {0};
    unsigned long size = BRIDGE_PREFLIGHT_PATH * sizeof(wchar_t);
    unsigned long type = 0;
    struct HKEY__* key = NULL;
    long error;
    text[0] = '\0';
    if (RegOpenKeyExW(localMachine, L"SOFTWARE\\Vantrel_nvo", 0, access, &key) != 0) return 0;
    error = RegQueryValueExW(key, name, NULL, &type, (unsigned char*)wide, &size);
    RegCloseKey(key);
    if (error != 0 || type != plainText) return 0;
    if (WideCharToMultiByte(65001, 0, wide, -1, text, BRIDGE_PREFLIGHT_TEXT, NULL, NULL) <= 0) {
        text[0] = '\0';
    }
    return text[0] != '\0';
}

/* Opens a file with full sharing. Returns null on failure. */
BRIDGE_INLINE void* bridgePreflightOpen(const char* path, unsigned long access,
                                        unsigned long disposition, unsigned long flags) {
    const unsigned long shareAll = 1 | 2 | 4;
    wchar_t wide[BRIDGE_PREFLIGHT_PATH];
    void* file;
    if (!bridgePreflightWidePath(path, wide)) return NULL;
    file = CreateFileW(wide, access, shareAll, NULL, disposition, flags, NULL);
    return file == (void*)(ptrdiff_t)-1 ? NULL : file;
}

/* Returns the attributes of a file or folder. All bits are set when it does not exist. */
BRIDGE_INLINE unsigned long bridgePreflightAttributes(const char* path) {
    wchar_t wide[BRIDGE_PREFLIGHT_PATH];
    return bridgePreflightWidePath(path, wide) ? GetFileAttributesW(wide) : 0xFFFFFFFFul;
}

BRIDGE_INLINE int bridgePreflightExists(const char* path) {
    return bridgePreflightAttributes(path) != 0xFFFFFFFFul;
}

BRIDGE_INLINE int bridgePreflightIsFolder(const char* path) {
    const unsigned long folder = 0x10; /* FILE_ATTRIBUTE_DIRECTORY */
    return bridgePreflightExists(path) && (bridgePreflightAttributes(path) & folder) != 0;
}

/* Reports the problem `before` + `name` + `after`. */
BRIDGE_INLINE void bridgePreflightReport(bridgeOnProblem report, void* context, const char* before,
                                         const char* name, const char* after, const char* remedy) {
    char what[BRIDGE_PREFLIGHT_TEXT] = "";
    bridgePreflightAppend(what, sizeof what, before);
    bridgePreflightAppend(what, sizeof what, name);
    bridgePreflightAppend(what, sizeof what, after);
    report(context, what, remedy);
}

/* Closes a file that was opened as a test. Returns 0, or the Windows error of the failed open. */
BRIDGE_INLINE unsigned long bridgePreflightTried(void* file) {
    const unsigned long error = GetLastError();
    if (file == NULL) return error != 0 ? error : 31; /* ERROR_GEN_FAILURE */
    CloseHandle(file);
    return 0;
}

/* Creates and deletes a file in the folder of `path`. Returns 0 or the Windows error. */
BRIDGE_INLINE unsigned long bridgePreflightTryToCreate(const char* path) {
    const unsigned long appendAndDelete = 0x4 | 0x10000; /* FILE_APPEND_DATA | DELETE */
    const unsigned long createNew = 1, deleteOnClose = 0x04000000;
    char probe[BRIDGE_PREFLIGHT_TEXT] = "";
    char digits[] = ".00000000.tmp";
    unsigned long number = GetCurrentProcessId();
    size_t at;
    for (at = 8; at > 0; --at, number /= 10) digits[at] = (char)('0' + number % 10);
    bridgePreflightAppend(probe, sizeof probe, path);
    bridgePreflightAppend(probe, sizeof probe, digits);
    return bridgePreflightTried(
        bridgePreflightOpen(probe, appendAndDelete, createNew, deleteOnClose));
}

/* Returns 0, or the Windows error with which the library would fail to open this log. The library
 * creates missing folders up to the last backslash. */
BRIDGE_INLINE unsigned long bridgePreflightTryToLog(const char* path) {
    const unsigned long append = 0x4, openExisting = 3; /* FILE_APPEND_DATA */
    const char* const separator = strrchr(path, '\\');
    char folder[BRIDGE_PREFLIGHT_TEXT] = "";
    if (bridgePreflightExists(path)) {
        return bridgePreflightTried(bridgePreflightOpen(path, append, openExisting, 0));
    }
    if (separator != NULL && separator != path && (size_t)(separator - path) < sizeof folder) {
        memcpy(folder, path, (size_t)(separator - path));
        if (!bridgePreflightExists(folder)) return 0;
    }
    return bridgePreflightTryToCreate(path);
}

/* Appends the number in decimal. */
BRIDGE_INLINE void bridgePreflightAppendNumber(char* text, size_t room, unsigned long number) {
    char digits[12] = "";
    size_t at = sizeof digits - 1;
    do {
        digits[--at] = (char)('0' + number % 10);
        number /= 10;
    } while (number != 0 && at > 0);
    bridgePreflightAppend(text, room, digits + at);
}

BRIDGE_INLINE void bridgePreflightLog(const char* data, const char* logFilePath,
                                      bridgeOnProblem report, void* context) {
    char path[BRIDGE_PREFLIGHT_TEXT] = "";
    char after[64] = " cannot be opened (Windows error ";
    unsigned long error;
    if (logFilePath == NULL) {
        bridgePreflightAppend(path, sizeof path, data);
        bridgePreflightAppend(path, sizeof path, "\\Logs");
        if (!bridgePreflightIsFolder(path)) {
            bridgePreflightReport(report, context, "the folder ", path, " does not exist",
                                  "create it: the log is written there");
            return;
        }
        bridgePreflightAppend(path, sizeof path, "\\Player.log");
        logFilePath = path;
    }
    if (logFilePath[0] == '\0') return;
    error = bridgePreflightTryToLog(logFilePath);
    if (error == 0) return;
    bridgePreflightAppendNumber(after, sizeof after, error);
    bridgePreflightAppend(after, sizeof after, ")");
    bridgePreflightReport(report, context, "the log ", logFilePath, after,
                          "give this user the right to write it, or name another log file");
}

BRIDGE_INLINE void bridgePreflightConfiguration(const char* data, bridgeOnProblem report,
                                                void* context) {
    const unsigned long read = 0x80000000ul, openExisting = 3; /* GENERIC_READ */
    char path[BRIDGE_PREFLIGHT_TEXT] = "";
    char start[3] = {0, 0, 0};
    unsigned long done = 0;
    void* file;
    bridgePreflightAppend(path, sizeof path, data);
    bridgePreflightAppend(path, sizeof path, "\\vantrel.conf");
    file = bridgePreflightOpen(path, read, openExisting, 0);
    if (file == NULL) {
        const int exists = bridgePreflightExists(path);
        bridgePreflightReport(report, context, "the configuration file ", path,
                              exists ? " cannot be read" : " does not exist",
                              exists ? "give this user the right to read it"
                                     : "install the product, or copy a vantrel.conf there");
        return;
    }
    ReadFile(file, start, sizeof start, &done, NULL);
    CloseHandle(file);
    if (done < sizeof start || memcmp(start, "\xEF\xBB\xBF", sizeof start) != 0) return;
    bridgePreflightReport(report, context, "the configuration file ", path,
                          " begins with a byte order mark",
                          "save it as UTF-8 without a byte order mark");
}

BRIDGE_INLINE void bridgePreflightVersion(bridgeOnProblem report, void* context) {
    char product[BRIDGE_PREFLIGHT_TEXT];
    bridgeProductValue(L"Version", product);
    if (strcmp(product, BRIDGE_VERSION_TEXT) == 0) return;
    bridgePreflightReport(report, context, "the product's version is \"", product,
                          "\", and the library's is \"" BRIDGE_VERSION_TEXT "\"",
                          "install product and library of the same version");
}

/* Stores the data folder in `data`. Returns 0 after reporting that there is none. */
BRIDGE_INLINE int bridgePreflightData(char* data, bridgeOnProblem report, void* context) {
    if (!bridgeProductValue(L"UserDefinedDir", data)) {
        report(context,
               "the registry value HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantrel_nvo \"UserDefinedDir\" "
               "is missing",
               "install the product, or set it to a data folder (reg add HKLM\\SOFTWARE\\"
               "Vantrel_nvo /v UserDefinedDir /d C:\\Data)");
        return 0;
    }
    if (bridgePreflightIsFolder(data)) return 1;
    bridgePreflightReport(report, context, "the data folder ", data, " does not exist",
                          "create it, or set the registry value \"UserDefinedDir\" to another");
    return 0;
}

/**
 * Checks the data folder, the log, the configuration file and, for "Launcher", the product's
 * version, without a lasting change. Does not find a bad line in the configuration file or an
 * unknown client id. If the data folder is missing, checks nothing else.
 * @param clientId    as for bridgeApiInitEx()
 * @param noConfFile  as for bridgeApiInitEx()
 * @param logFilePath as for bridgeApiInitEx()
 * @param report      receives each problem, the most important first
 * @param context     passed to `report`
 */
BRIDGE_INLINE void bridgeForEachProblem(const char* clientId, bridge_bool noConfFile,
                                        const char* logFilePath, bridgeOnProblem report,
                                        void* context) {
    char data[BRIDGE_PREFLIGHT_TEXT] = "";
    const int needsData = !noConfFile || logFilePath == NULL;
    if (needsData && !bridgePreflightData(data, report, context)) return;
    bridgePreflightLog(data, logFilePath, report, context);
    if (!noConfFile) bridgePreflightConfiguration(data, report, context);
    if (strcmp(clientId, "Launcher") == 0) bridgePreflightVersion(report, context);
}

/** The text that bridgePreflight() assembles. */
struct bridgePreflightTexts {
    char* text;
    size_t size;
    int count;
};

BRIDGE_INLINE void bridgePreflightCollect(void* context, const char* what, const char* remedy) {
    struct bridgePreflightTexts* const all = (struct bridgePreflightTexts*)context;
    ++all->count;
    if (all->size == 0) return;
    bridgePreflightAppend(all->text, all->size, what);
    bridgePreflightAppend(all->text, all->size, ": ");
    bridgePreflightAppend(all->text, all->size, remedy);
    bridgePreflightAppend(all->text, all->size, "\n");
}

/**
 * Reports the problems of bridgeForEachProblem() as text, with a line "what: remedy" for each.
 * @param clientId    as for bridgeApiInitEx()
 * @param noConfFile  as for bridgeApiInitEx()
 * @param logFilePath as for bridgeApiInitEx()
 * @param text        buffer for the lines, which are truncated if necessary; null if size is 0
 * @param size        size of the buffer in bytes
 * @return number of problems
 */
BRIDGE_INLINE int bridgePreflight(const char* clientId, bridge_bool noConfFile,
                                  const char* logFilePath, char* text, size_t size) {
    struct bridgePreflightTexts all;
    all.text = text;
    all.size = size;
    all.count = 0;
    if (size > 0) text[0] = '\0';
    bridgeForEachProblem(clientId, noConfFile, logFilePath, bridgePreflightCollect, &all);
    return all.count;
}

#if defined(__GNUC__) && defined(__cplusplus)
#pragma GCC diagnostic pop
#endif

#endif /* _WIN32 */

#endif
