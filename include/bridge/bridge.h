/**
 * @file bridge.h
 * @brief The C interface of QX-Bridge.dll, which controls a desktop product that runs Android
 *        instances: its configuration, instances, apps, programs and events.
 *
 * @code
 * char* instances;
 * if (bridgeApiInit("Helper") != BRIDGE_SUCCESS) return 1;  // the log has the cause
 * instances = bridgeConfGetInstances();
 * if (instances != NULL) puts(instances);
 * bridgeFreeMemory(instances);
 * bridgeApiFini();
 * @endcode
 *
 * These conventions apply to every function below:
 *
 * 1.  Order. Call bridgeApiInit() or bridgeApiInitEx() first and bridgeApiFini() last. The library
 *     checks this in one place only: bridgeRegisterCallbacks() before the initialisation or after
 *     bridgeApiFini() starts nothing and logs an error.
 * 2.  Encoding. Strings are NUL-terminated UTF-8. Strings from the configuration, an app cache or
 *     an event are passed on unchanged and may be invalid UTF-8.
 * 3.  Ownership. The caller owns every string that a function returns and frees it with
 *     bridgeFreeMemory(). No other deallocator works, whatever C runtime the host uses. The library
 *     reads string arguments only during the call. The client id is the exception: the
 *     initialisation keeps the pointer.
 * 4.  Errors. A function that returns a status returns BRIDGE_SUCCESS (0) or another result code,
 *     listed below. Every failure also writes a line to the log.
 * 5.  Booleans are one byte. The library returns 0 or 1 and reads every other value as 1.
 * 6.  Null. A null string is an error unless the parameter's description allows it: the function
 *     logs it and returns BRIDGE_INVALID_ARGUMENT, 0, false or null.
 * 7.  Threads. After the initialisation, every function may be called from any thread. While
 *     bridgeApiInit(), bridgeApiInitEx() or bridgeApiFini() runs, no other call may run, except
 *     calls from the callback that bridgeApiFini() waits for. Do not call a function from DllMain,
 *     or from the constructor or destructor of a static object in a DLL.
 * 8.  Fatal errors. The library logs "FATAL: DEBUG BREAK: ..." and ends the process with status
 *     0x80000003 on each of these errors. A runtime such as .NET's may change the status.
 *     - a configuration key that does not exist
 *     - a read or write of a key with the wrong type
 *     - a stored number or boolean that cannot be parsed
 *     - a log that cannot be opened
 *     - a program to start while "InstallDir" is missing from the registry
 *     - a listing that contains an instance of an unknown image
 *     - an event with an impossible length
 *     - a change of the list of instances while callback slot 3 is set and slot 4 is null
 *     - a failed wait for a machine-wide lock
 * 9.  Callbacks run one at a time on the library's event thread, never on a thread of the host.
 *     Their strings are never null and are valid only during the call. Copy them. A callback may
 *     call every function except bridgeApiFini(). An exception must not leave a callback. A slow
 *     callback delays the next one and blocks the senders.
 * 10. Blocking. Reading and setting configuration keys and listing the instances never wait for a
 *     disk, another program, the log or a callback, so a user interface thread may do both. The
 *     initialisation, a commit, a listing of apps and the two events that reload the configuration
 *     wait without limit while another program holds the lock of the same file. After a second, a
 *     warning in the log reports the wait. bridgePlrShutdown() and bridgeShutdown() take up to a
 *     minute for each program that does not respond.
 * 11. Exceptions. No C++ exception leaves a function. An exception that reaches the boundary is
 *     logged and becomes BRIDGE_FAILURE, 0, false or null.
 */
#ifndef BRIDGE_BRIDGE_H
#define BRIDGE_BRIDGE_H

/** @name Version of this interface and of its library */
/**@{*/
#define BRIDGE_VERSION_MAJOR 5
#define BRIDGE_VERSION_MINOR 2
#define BRIDGE_VERSION_PATCH 0
#define BRIDGE_VERSION_BUILD 1052
#define BRIDGE_VERSION_TEXT "5.2.0.1052"
/**@}*/

/** Calling convention of every function and callback. On x64 Windows it is the default. */
#if defined(_WIN32)
#define BRIDGE_CALL __cdecl
#else
#define BRIDGE_CALL
#endif

/**
 * Linkage of the functions. Define BRIDGE_DLLIMPORT before including this header to call directly
 * through the import table. It is optional with an import library. Hosts that use LoadLibrary leave
 * it undefined.
 */
#if defined(BRIDGE_DLLIMPORT) && defined(_WIN32)
#define BRIDGE_API __declspec(dllimport)
#else
#define BRIDGE_API
#endif

/** Signed 32-bit integer. */
typedef int bridge_i32;

/**
 * Signed 64-bit integer. C89 has no such type, but every compiler for x64 has it as an extension.
 * `__extension__` keeps GCC and clang from warning about it.
 */
#if defined(__GNUC__) || defined(__clang__)
__extension__ typedef long long bridge_i64;
#else
typedef long long bridge_i64;
#endif

/** Boolean: 0 is false, every other value is true (convention 5). */
typedef unsigned char bridge_bool;

/** @name Result codes
 * Codes 1 to 133 are the errno values of Linux. A Windows error without an equivalent is returned
 * as 100000 plus its number. The codes that the descriptions below mention have names.
 */
/**@{*/
#define BRIDGE_SUCCESS 0
#define BRIDGE_FAILURE (-1)        /**< Unspecified failure. The log has the cause. */
#define BRIDGE_NO_ENTRY 2          /**< A file or folder does not exist. */
#define BRIDGE_TOO_BIG 7           /**< A configuration line is 4096 bytes or longer. */
#define BRIDGE_ACCESS 13           /**< Access to a file is denied. */
#define BRIDGE_INVALID_ARGUMENT 22 /**< An argument is invalid. */
/**@}*/

#ifdef __cplusplus
extern "C" {
#endif

/** @name Callbacks
 * They run on the event thread (convention 9). A null callback is not called.
 */
/**@{*/

/**
 * An app was installed or updated.
 * @param instance     instance name
 * @param package      Android package name
 * @param activity     launch activity
 * @param appLabel     label shown to the user
 * @param versionCode  version code of the package
 * @param versionName  version name of the package
 * @param iconFilePath icon file
 * @param isUpdate     1 when an earlier version of the package was installed
 */
typedef void(BRIDGE_CALL* bridgeOnAppInstalled)(const char* instance, const char* package,
                                                const char* activity, const char* appLabel,
                                                bridge_i32 versionCode, const char* versionName,
                                                const char* iconFilePath, bridge_bool isUpdate);

/**
 * An app was uninstalled.
 * @param instance instance name
 * @param package  Android package name
 */
typedef void(BRIDGE_CALL* bridgeOnAppUninstalled)(const char* instance, const char* package);

/**
 * The installation of an APK file succeeded or failed.
 * @param instance    instance name
 * @param status      the sender's status number
 * @param apkFilePath the APK file
 */
typedef void(BRIDGE_CALL* bridgeOnApkInstallCompleted)(const char* instance, bridge_i32 status,
                                                       const char* apkFilePath);

/**
 * The list of instances changed, and the library has reloaded the configuration. If the reload
 * failed, the log has the error and the library calls the callback all the same. After a malformed
 * line, bridgeConfGetInstances() lists only the instances of the lines before it.
 */
typedef void(BRIDGE_CALL* bridgeOnInstanceListUpdated)(void);

/**
 * An image installation made progress.
 * @param imageName name of the image
 * @param status    the sender's status number; bridgeOnInstanceListUpdated precedes status 2
 * @param progress  the sender's progress value
 */
typedef void(BRIDGE_CALL* bridgeInstallImageProgress)(const char* imageName, bridge_i32 status,
                                                      double progress);

/**
 * The creation of an instance succeeded or failed.
 * @param status   the sender's status number
 * @param instance instance name
 */
typedef void(BRIDGE_CALL* bridgeOnCreateInstanceCompleted)(bridge_i32 status, const char* instance);

/**
 * The configuration of an instance changed, and the library has reloaded it.
 * bridgeOnInstanceListUpdated describes the effect of a failed reload.
 * @param instance instance name
 */
typedef void(BRIDGE_CALL* bridgeOnInstanceConfigurationChanged)(const char* instance);

/**
 * An app came to the foreground.
 * @param instance instance name
 * @param package  Android package name
 */
typedef void(BRIDGE_CALL* bridgeOnAppDisplayed)(const char* instance, const char* package);

/**
 * The accounts of an instance changed.
 * @param instance instance name
 * @param emailId  the account that was added or removed
 * @param action   the sender's action number
 */
typedef void(BRIDGE_CALL* bridgeOnAccountListUpdated)(const char* instance, const char* emailId,
                                                      bridge_i32 action);
/**@}*/

/** @name Initialisation */
/**@{*/

/**
 * Initialises the library with the product's configuration file and log. Equivalent to
 * bridgeApiInitEx(clientId, 0, 0, NULL).
 * @param clientId as for bridgeApiInitEx()
 * @return as for bridgeApiInitEx()
 */
BRIDGE_API bridge_i32 BRIDGE_CALL bridgeApiInit(const char* clientId);

/**
 * Initialises the library: checks the client id, opens the log and loads the configuration.
 *
 * A further call repeats every step. The call sets the locale of the C runtime that the process
 * shares (ucrtbase) to the user's locale with UTF-8. If the host uses this runtime, it then opens
 * narrow file names as UTF-8 and may print a decimal comma.
 * @param clientId    "Launcher", "Installer", "LogCollector", "Helper" or "Uninstaller". The
 *                    library keeps the pointer, which must stay valid until it is unloaded.
 * @param noConfFile  1: start with the default values and without a configuration file
 * @param reserved    ignored; pass 0
 * @param logFilePath log file. Null: the product's own log. An empty string: the log stays where
 *                    it is, which is standard output at first. Missing folders are created up to
 *                    the last backslash. A log that cannot be opened is fatal.
 * @return 0 on success. 22 for an unknown client id. -1 when the client is "Launcher" and the
 *         product has another version, when the configuration file is missing or malformed (the
 *         values before the error stay usable), when the machine-wide lock of the file cannot be
 *         created (no value is read), or after an exception
 */
BRIDGE_API bridge_i32 BRIDGE_CALL bridgeApiInitEx(const char* clientId, bridge_bool noConfFile,
                                                  bridge_i64 reserved, const char* logFilePath);

/**
 * Stops the event server, if it runs, and waits for its thread and for a running callback.
 *
 * Call it last. Inside a callback it stops nothing and logs an error. It does not commit staged
 * changes. It is not needed after a failed initialisation. A host that does not call it still ends
 * cleanly, but cannot unload the library. Call FreeLibrary() only after this function has returned,
 * because an earlier FreeLibrary() can unload the library while the function still runs. Qt's two
 * DLLs stay loaded once the library has handled an event or sent a request.
 * @return 0
 */
BRIDGE_API bridge_i32 BRIDGE_CALL bridgeApiFini(void);
/**@}*/

/** @name Configuration
 * A full key is "vtr.<name>" for a global property or "vtr.instance.<instance>.<name>" for a
 * property of one instance. A key that is not in the catalogue of keys, or that has another type
 * than the function, is fatal (convention 8). Set functions stage a change in memory. Reads see it
 * immediately. The file gets it with the next commit.
 */
/**@{*/

/**
 * Reads a boolean property. A property without a value is fatal. Four properties have no default
 * value. An instance that another program has created since the last load has no values at all.
 * @param key full key
 * @return the value
 */
BRIDGE_API bridge_bool BRIDGE_CALL bridgeConfGetBool(const char* key);

/**
 * Reads a 32-bit integer property.
 * @param key full key
 * @return the value; 0 when the property has none. A stored number beyond 32 bits is clamped.
 */
BRIDGE_API bridge_i32 BRIDGE_CALL bridgeConfGetI32(const char* key);

/**
 * Reads a 64-bit integer property. The current catalogue has none, so every key is fatal.
 * @param key full key
 * @return the value
 */
BRIDGE_API bridge_i64 BRIDGE_CALL bridgeConfGetI64(const char* key);

/**
 * Reads a string property.
 * @param key full key
 * @return the string; free it with bridgeFreeMemory(). Null only after a failure, which is logged.
 */
BRIDGE_API char* BRIDGE_CALL bridgeConfGetString(const char* key);

/**
 * Reads a multi-string property as one string: the elements, separated by ",".
 * @param key full key
 * @return the string; free it with bridgeFreeMemory(). Null only after a failure, which is logged.
 */
BRIDGE_API char* BRIDGE_CALL bridgeConfGetMultiString(const char* key);

/**
 * Stages a boolean.
 * @param key   full key; a new instance is added with its default values
 * @param value new value
 * @return 0; 22 when the key is null
 */
BRIDGE_API bridge_i32 BRIDGE_CALL bridgeConfSetBool(const char* key, bridge_bool value);

/**
 * Stages a 32-bit integer.
 * @param key   as for bridgeConfSetBool()
 * @param value new value
 * @return 0; 22 when the key is null
 */
BRIDGE_API bridge_i32 BRIDGE_CALL bridgeConfSetI32(const char* key, bridge_i32 value);

/**
 * Stages a 64-bit integer. The current catalogue has none, so every key is fatal.
 * @param key   as for bridgeConfSetBool()
 * @param value new value
 * @return 0; 22 when the key is null
 */
BRIDGE_API bridge_i32 BRIDGE_CALL bridgeConfSetI64(const char* key, bridge_i64 value);

/**
 * Stages a string.
 * @param key   as for bridgeConfSetBool()
 * @param value new value. With a line feed in it, or a line of 4096 bytes or more, the commit
 *              fails. If the file does not have the key, every later commit fails too, until the
 *              key gets another value.
 * @return 0; 22 when an argument is null
 */
BRIDGE_API bridge_i32 BRIDGE_CALL bridgeConfSetString(const char* key, const char* value);

/**
 * Stages a multi-string.
 * @param key   as for bridgeConfSetBool()
 * @param value elements, separated by ","; the limits of bridgeConfSetString() apply
 * @return 0; 22 when an argument is null
 */
BRIDGE_API bridge_i32 BRIDGE_CALL bridgeConfSetMultiString(const char* key, const char* value);

/**
 * Writes the staged changes to the configuration file and keeps the changes that other programs
 * have committed since the last load. Writes nothing when no change is staged.
 * @return 0 on success. -1 when the file cannot be reloaded (the changes stay staged). 7 when a
 *         line is too long, 22 when a key or value cannot be stored. Otherwise the code of the
 *         file operation that failed. After a failure, the file is unchanged.
 */
BRIDGE_API bridge_i32 BRIDGE_CALL bridgeConfCommit(void);

/**
 * Writes the product's configuration, with the staged changes, to another file. Always writes.
 *
 * After success no change is staged, so a following bridgeConfCommit() writes nothing. The
 * configuration file does not get these changes, except for keys that it does not have: the next
 * commit that writes adds them. Reads see the changes until the next load. To write both files,
 * call bridgeConfCommit() first.
 * @param path file to write. Missing folders are created up to the last backslash.
 * @return as for bridgeConfCommit()
 */
BRIDGE_API bridge_i32 BRIDGE_CALL bridgeConfCommitToFile(const char* path);

/**
 * Lists the instances as JSON: an array of objects with the strings "instance", "deviceProfile",
 * "graphicsEngine", "graphicsRenderer", "imageName", "displayName" and the numbers "ram" and
 * "cpu", sorted by instance name. An instance of an unknown image is fatal.
 * @return the JSON; free it with bridgeFreeMemory(). Null only after a failure, which is logged.
 */
BRIDGE_API char* BRIDGE_CALL bridgeConfGetInstances(void);

/**
 * Frees a string that a function of this library returned.
 * @param memory the string; null does nothing
 */
BRIDGE_API void BRIDGE_CALL bridgeFreeMemory(void* memory);
/**@}*/

/** @name Programs
 * All but the two shutdown functions start the player or the multi-instance manager with a command
 * line. They return as soon as the process exists. The outcome arrives later as events.
 *
 * If Windows requires elevation for the program (error 740), the call starts it elevated and waits
 * for the user's consent. It returns 101223 when the user declines. An elevated program runs with
 * another token and inherits no handles from the host.
 */
/**@{*/

/**
 * Launches an app.
 * @param instance instance name
 * @param package  Android package name
 * @return 0, or the code of the failed start
 */
BRIDGE_API bridge_i32 BRIDGE_CALL bridgeLaunchApp(const char* instance, const char* package);

/**
 * Opens an app's page in an app store.
 * @param instance instance name
 * @param store    name of the store, passed to the player
 * @param package  Android package name
 * @return as for bridgeLaunchApp()
 */
BRIDGE_API bridge_i32 BRIDGE_CALL bridgeLaunchAppStore(const char* instance, const char* store,
                                                       const char* package);

/**
 * Opens a URL in an instance.
 * @param instance instance name
 * @param url      URL
 * @return as for bridgeLaunchApp()
 */
BRIDGE_API bridge_i32 BRIDGE_CALL bridgeLaunchUrl(const char* instance, const char* url);

/**
 * Installs an APK file.
 * @param instance    instance name
 * @param apkFilePath path of the APK file
 * @return as for bridgeLaunchApp()
 */
BRIDGE_API bridge_i32 BRIDGE_CALL bridgeInstallApk(const char* instance, const char* apkFilePath);

/**
 * Uninstalls an app.
 * @param instance instance name
 * @param package  Android package name
 * @return as for bridgeLaunchApp()
 */
BRIDGE_API bridge_i32 BRIDGE_CALL bridgeUninstallApp(const char* instance, const char* package);

/**
 * Installs an Android image.
 * @param imageName name of the image
 * @return as for bridgeLaunchApp()
 */
BRIDGE_API bridge_i32 BRIDGE_CALL bridgeInstallImage(const char* imageName);

/**
 * Creates an instance. All values are strings, and numbers are decimal.
 * @param imageName        name of the image
 * @param cpu              number of processors
 * @param ram              memory in MiB
 * @param graphicEngine    graphics engine
 * @param graphicRenderer  graphics renderer
 * @param deviceProfile    device profile code
 * @return as for bridgeLaunchApp()
 */
BRIDGE_API bridge_i32 BRIDGE_CALL bridgeCreateFreshInstance(const char* imageName, const char* cpu,
                                                            const char* ram,
                                                            const char* graphicEngine,
                                                            const char* graphicRenderer,
                                                            const char* deviceProfile);

/**
 * Asks the player of one instance to shut down. Does not wait until it has ended.
 * @param instance instance name
 * @param flag     passed to the player
 * @return 0 when the request was sent, even if it did not arrive
 */
BRIDGE_API bridge_i32 BRIDGE_CALL bridgePlrShutdown(const char* instance, bridge_bool flag);

/** Asks the multi-instance manager and then the player of every listed instance to shut down. */
BRIDGE_API void BRIDGE_CALL bridgeShutdown(void);
/**@}*/

/** @name Events and apps */
/**@{*/

/**
 * Sets the callbacks. The first call also starts the event server.
 *
 * A later call replaces all nine callbacks atomically, even from inside a callback. It does not
 * wait for a running callback, so whatever that callback uses must stay valid. Any callback may be
 * null, but set slots 3 and 4 together. The library calls bridgeOnInstanceListUpdated if and only
 * if bridgeOnApkInstallCompleted is set. A null slot 4 is then fatal (convention 8).
 *
 * The event server fails to start when another process with the same client id owns its name. The
 * failure appears only in the log. The library does not retry, not even after bridgeApiFini().
 * @param onAppInstalled                 slot 1
 * @param onAppUninstalled               slot 2
 * @param onApkInstallCompleted          slot 3
 * @param onInstanceListUpdated          slot 4
 * @param installImageProgress           slot 5
 * @param onCreateInstanceCompleted      slot 6
 * @param onInstanceConfigurationChanged slot 7
 * @param onAppDisplayed                 slot 8
 * @param onAccountListUpdated           slot 9
 */
BRIDGE_API void BRIDGE_CALL bridgeRegisterCallbacks(
    bridgeOnAppInstalled onAppInstalled, bridgeOnAppUninstalled onAppUninstalled,
    bridgeOnApkInstallCompleted onApkInstallCompleted,
    bridgeOnInstanceListUpdated onInstanceListUpdated,
    bridgeInstallImageProgress installImageProgress,
    bridgeOnCreateInstanceCompleted onCreateInstanceCompleted,
    bridgeOnInstanceConfigurationChanged onInstanceConfigurationChanged,
    bridgeOnAppDisplayed onAppDisplayed, bridgeOnAccountListUpdated onAccountListUpdated);

/**
 * Lists the apps of an instance as JSON: an array of objects with the strings "package",
 * "activity", "appLabel", "versionName", "iconFilePath" and the number "versionCode", sorted by
 * package. The icon file may be missing.
 *
 * The function reads the instance's app cache, whether or not the instance runs. The array is empty
 * in three cases: there is no app cache; another program has the cache open exclusively; the cache
 * is not a JSON array or cannot be opened for another reason, and the library deletes it. The log
 * shows which.
 * @param instance instance name
 * @return the JSON; free it with bridgeFreeMemory(). Null, with an error in the log, when the
 *         machine-wide lock of the app cache cannot be created, for example because the instance
 *         name has a backslash, when an element is not an object, or when an app has a value that
 *         is missing or has the wrong type
 */
BRIDGE_API char* BRIDGE_CALL bridgeGetInstalledApps(const char* instance);
/**@}*/

#ifdef __cplusplus
}
#endif

#endif
