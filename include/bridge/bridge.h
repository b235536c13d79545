/**
 * @file bridge.h
 * @brief The C interface of QX-Bridge.dll: configuration, instances, apps, programs and events of
 *        a desktop product that runs Android instances.
 *
 * Conventions, for every function below:
 *
 * 1.  Order. Call bridgeApiInit() or bridgeApiInitEx() first and bridgeApiFini() last. Nothing
 *     checks this, except that bridgeRegisterCallbacks() before the first or after the last starts
 *     nothing and logs an error.
 * 2.  Texts are NUL-terminated UTF-8. A text argument is read during the call only, with one
 *     exception: the client id of the initialisation is kept by pointer. A text that comes from
 *     the configuration, an app cache or an event is handed on as it is, and need not be UTF-8.
 * 3.  Ownership. A text that a function returns belongs to the caller, who gives it back to
 *     bridgeFreeMemory(). No other deallocator fits, whatever C runtime the host uses.
 * 4.  Results. Functions that return bridge_i32 answer 0 (BRIDGE_SUCCESS) or one of the codes
 *     below; a failure also leaves a line in the log.
 * 5.  Booleans are one byte, 0 or 1; any other value is read as 1.
 * 6.  Null. A null text is refused with a log line and BRIDGE_INVALID_ARGUMENT, 0, false or null;
 *     where null is welcome the parameter says so.
 * 7.  Threads. After the initialisation every function may be called from any thread, except
 *     bridgeApiInit(), bridgeApiInitEx() and bridgeApiFini(), during which no other call may run
 *     but those of the callback that bridgeApiFini() waits for. No function may be called from
 *     DllMain, or from the constructor or destructor of a static object of a DLL.
 * 8.  Fatal errors. A configuration key that does not exist, a read or write of the wrong type,
 *     and a stored number or boolean that cannot be read are programming errors: the library logs
 *     "FATAL: DEBUG BREAK: ..." and ends the process with status 0x80000003, which a runtime
 *     such as .NET's may change. So do a log that cannot be opened, the start of a program
 *     without "InstallDir" in the registry, an instance of an unknown image in a listing, an
 *     event of an impossible length, slot 3 without slot 4, and a machine-wide lock that cannot
 *     be waited for.
 * 9.  Callbacks run on the library's event thread, one after another, never on the host's thread.
 *     Their text arguments are never null, and valid during the call only. Inside one, every
 *     function works except bridgeApiFini(). An exception must not leave a callback.
 * 10. Waiting. Reads and writes of the configuration and the listing of instances never wait for a
 *     disk, another program, the log or a callback, whatever other threads do meanwhile: a thread
 *     that draws a window may call them. The initialisation, a commit, a listing of apps and the
 *     two events that load the configuration again wait, without limit, for programs that have
 *     the same file's lock; after a second a warning in the log says so. A request to a program
 *     (bridgePlrShutdown(), bridgeShutdown()) takes up to a minute, for each program, when that
 *     one is hung.
 * 11. No C++ exception leaves a function; one that reaches the boundary is logged and becomes
 *     BRIDGE_FAILURE, 0, false or null.
 */
#ifndef BRIDGE_BRIDGE_H
#define BRIDGE_BRIDGE_H

/** @name Version of this interface and of the library that goes with it */
/**@{*/
#define BRIDGE_VERSION_MAJOR 5
#define BRIDGE_VERSION_MINOR 2
#define BRIDGE_VERSION_PATCH 0
#define BRIDGE_VERSION_BUILD 1052
#define BRIDGE_VERSION_TEXT "5.2.0.1052"
/**@}*/

/** Calling convention of every function and callback; on x64 Windows, that of plain functions. */
#if defined(_WIN32)
#define BRIDGE_CALL __cdecl
#else
#define BRIDGE_CALL
#endif

/**
 * Linkage of the functions. Define BRIDGE_DLLIMPORT before including this header to call through
 * the import table directly; without it the header also serves hosts that use LoadLibrary, and
 * linking against an import library works either way.
 */
#if defined(BRIDGE_DLLIMPORT) && defined(_WIN32)
#define BRIDGE_API __declspec(dllimport)
#else
#define BRIDGE_API
#endif

/** Signed 32-bit integer. */
typedef int bridge_i32;

/**
 * Signed 64-bit integer. C89 has none: every compiler for x64 has it as an extension, which is
 * marked for those that warn of unmarked ones.
 */
#if defined(__GNUC__) || defined(__clang__)
__extension__ typedef long long bridge_i64;
#else
typedef long long bridge_i64;
#endif

/** Boolean in one byte: 0 is false, anything else true; the library answers 0 or 1. */
typedef unsigned char bridge_bool;

/** @name Result codes
 * The numbers 1 to 133 are those of Linux's errno; a Windows error without an equivalent arrives
 * as 100000 plus its number. These are the ones that the functions below name.
 */
/**@{*/
#define BRIDGE_SUCCESS 0
#define BRIDGE_FAILURE (-1)        /**< Generic failure; the log has the cause. */
#define BRIDGE_NO_ENTRY 2          /**< A file or folder does not exist. */
#define BRIDGE_TOO_BIG 7           /**< A configuration line is 4096 bytes or longer. */
#define BRIDGE_ACCESS 13           /**< Access to a file was denied. */
#define BRIDGE_INVALID_ARGUMENT 22 /**< An argument was refused. */
/**@}*/

#ifdef __cplusplus
extern "C" {
#endif

/** @name Callbacks
 * Each may be null, which means "do not call me". They run on the event thread (convention 9).
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
 * @param isUpdate     1 when the package was there before
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
 * An APK file that was handed to an instance has been dealt with.
 * @param instance    instance name
 * @param status      the sender's status number
 * @param apkFilePath the file
 */
typedef void(BRIDGE_CALL* bridgeOnApkInstallCompleted)(const char* instance, bridge_i32 status,
                                                       const char* apkFilePath);

/**
 * The list of instances changed; the configuration has been loaded again before this call. The call
 * also comes when that load failed, which the log says: after a malformed line,
 * bridgeConfGetInstances() lists only the instances of the lines before it.
 */
typedef void(BRIDGE_CALL* bridgeOnInstanceListUpdated)(void);

/**
 * Progress of an image installation.
 * @param imageName name of the image
 * @param status    the sender's status number; 2 is preceded by bridgeOnInstanceListUpdated
 * @param progress  the sender's progress value
 */
typedef void(BRIDGE_CALL* bridgeInstallImageProgress)(const char* imageName, bridge_i32 status,
                                                      double progress);

/**
 * A new instance was created, or could not be.
 * @param status   the sender's status number
 * @param instance instance name
 */
typedef void(BRIDGE_CALL* bridgeOnCreateInstanceCompleted)(bridge_i32 status, const char* instance);

/**
 * The configuration of an instance changed; it has been loaded again before this call, and a
 * failed load has the effect that bridgeOnInstanceListUpdated describes.
 * @param instance instance name
 */
typedef void(BRIDGE_CALL* bridgeOnInstanceConfigurationChanged)(const char* instance);

/**
 * An app came to the front.
 * @param instance instance name
 * @param package  Android package name
 */
typedef void(BRIDGE_CALL* bridgeOnAppDisplayed)(const char* instance, const char* package);

/**
 * The accounts of an instance changed.
 * @param instance instance name
 * @param emailId  account that was added or removed
 * @param action   the sender's action number
 */
typedef void(BRIDGE_CALL* bridgeOnAccountListUpdated)(const char* instance, const char* emailId,
                                                      bridge_i32 action);
/**@}*/

/** @name Initialisation */
/**@{*/

/**
 * Initialises the library with the product's configuration file and log: the same as
 * bridgeApiInitEx(clientId, 0, 0, NULL).
 * @param clientId as for bridgeApiInitEx()
 * @return as for bridgeApiInitEx()
 */
BRIDGE_API bridge_i32 BRIDGE_CALL bridgeApiInit(const char* clientId);

/**
 * Initialises the library: checks the client, starts the log and loads the configuration.
 *
 * May be called again, which runs every step once more. Makes UTF-8 the encoding of the C runtime
 * that the process shares (ucrtbase), with the user's locale: a host that uses this runtime opens
 * narrow file names as UTF-8 from then on, and may print a decimal comma.
 * @param clientId    "Launcher", "Installer", "LogCollector", "Helper" or "Uninstaller". The
 *                    pointer is kept: the text must live as long as the library.
 * @param noConfFile  1 starts with the catalogue's defaults and without a configuration file
 * @param reserved    ignored; pass 0
 * @param logFilePath file to log into, or null for the product's own log. Its folder must exist
 *                    when only "/" separates it; a log that cannot be opened is fatal. An empty
 *                    text keeps the log where it is: at first, standard output.
 * @return 0; 22 for an unknown client id; -1 when the launcher meets another product version, the
 *         configuration file is missing or malformed (what was read stays usable), the machine-wide
 *         lock of that file cannot be made (nothing was read), or an exception reached the boundary
 */
BRIDGE_API bridge_i32 BRIDGE_CALL bridgeApiInitEx(const char* clientId, bridge_bool noConfFile,
                                                  bridge_i64 reserved, const char* logFilePath);

/**
 * Stops the event server, if there is one, and waits for its thread and the callback that runs.
 * Does not commit pending changes. Call it last; inside a callback it stops nothing and logs an
 * error. Without it a host ends cleanly too, but cannot unload the library. Not needed after an
 * initialisation that failed. Qt's two DLLs stay loaded once an event or a request was dealt with.
 * Call FreeLibrary() only after this function has returned: a host that drops its last reference
 * earlier has the library unloaded while this function still runs in it.
 * @return 0
 */
BRIDGE_API bridge_i32 BRIDGE_CALL bridgeApiFini(void);
/**@}*/

/** @name Configuration
 * Keys are full keys: "vtr.<name>" for a global property, "vtr.instance.<instance>.<name>" for a
 * property of one instance. A key that the catalogue does not know, or one of another type than
 * the function's, is fatal (convention 8). Set functions stage a change in memory; reads see it
 * at once, the file only after a commit.
 */
/**@{*/

/**
 * Reads a boolean property. A property without a value is fatal: one of the four that have no
 * default, before it is set, and any of an instance that this process has not loaded yet, such as
 * one that another program has created since the last load.
 * @param key full key
 * @return its value
 */
BRIDGE_API bridge_bool BRIDGE_CALL bridgeConfGetBool(const char* key);

/**
 * Reads a 32-bit integer property; one without a value reads as 0, one beyond 32 bits as the
 * nearest number.
 * @param key full key
 * @return its value
 */
BRIDGE_API bridge_i32 BRIDGE_CALL bridgeConfGetI32(const char* key);

/**
 * Reads a 64-bit integer property. The present catalogue has none, so that every key is fatal.
 * @param key full key
 * @return its value
 */
BRIDGE_API bridge_i64 BRIDGE_CALL bridgeConfGetI64(const char* key);

/**
 * Reads a string property.
 * @param key full key
 * @return a new text for bridgeFreeMemory(); null only after a failure that was logged
 */
BRIDGE_API char* BRIDGE_CALL bridgeConfGetString(const char* key);

/**
 * Reads a multi-string property in its stored form: elements joined by ",".
 * @param key full key
 * @return a new text for bridgeFreeMemory(); null only after a failure that was logged
 */
BRIDGE_API char* BRIDGE_CALL bridgeConfGetMultiString(const char* key);

/**
 * Stages a boolean.
 * @param key   full key; an instance that is not known yet becomes known, with its defaults
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
 * Stages a 64-bit integer. The present catalogue has none, so that every key is fatal.
 * @param key   as for bridgeConfSetBool()
 * @param value new value
 * @return 0; 22 when the key is null
 */
BRIDGE_API bridge_i32 BRIDGE_CALL bridgeConfSetI64(const char* key, bridge_i64 value);

/**
 * Stages a string.
 * @param key   as for bridgeConfSetBool()
 * @param value new value; a line feed in it, or a line of 4096 bytes or more, makes the commit
 *              fail, and where the file lacks the key every later one until the value is set again
 * @return 0; 22 when an argument is null
 */
BRIDGE_API bridge_i32 BRIDGE_CALL bridgeConfSetString(const char* key, const char* value);

/**
 * Stages a multi-string.
 * @param key   as for bridgeConfSetBool()
 * @param value elements joined by ","; limits as for bridgeConfSetString()
 * @return 0; 22 when an argument is null
 */
BRIDGE_API bridge_i32 BRIDGE_CALL bridgeConfSetMultiString(const char* key, const char* value);

/**
 * Writes the staged changes to the configuration file, on top of what other programs committed
 * meanwhile. Without a staged change nothing is written.
 * @return 0; -1 when the file cannot be loaded again (the staged changes stay staged); 7 or 22
 *         when a line cannot be stored; else the code of the file operation that failed. The old
 *         file stays whole in every case.
 */
BRIDGE_API bridge_i32 BRIDGE_CALL bridgeConfCommit(void);

/**
 * Like bridgeConfCommit(), but always writes, and into a file of the caller's choice: the
 * product's configuration with the staged changes on top of it.
 *
 * Afterwards nothing is staged: a bridgeConfCommit() then has nothing to write. The configuration
 * file does not get these changes, except for keys that it lacks, which the next commit with a
 * change adds. Reads see the changes until the next load. For both files, call bridgeConfCommit()
 * first.
 * @param path file to write; missing folders are created, as far as "\" separates them
 * @return as for bridgeConfCommit()
 */
BRIDGE_API bridge_i32 BRIDGE_CALL bridgeConfCommitToFile(const char* path);

/**
 * Lists the instances as JSON: an array of objects with the texts "instance", "deviceProfile",
 * "graphicsEngine", "graphicsRenderer", "imageName", "displayName" and the numbers "ram" and
 * "cpu", ordered by instance name. An instance of an unknown image is fatal.
 * @return a new text for bridgeFreeMemory(); null only after a failure that was logged
 */
BRIDGE_API char* BRIDGE_CALL bridgeConfGetInstances(void);

/**
 * Frees a text that a function of this library returned.
 * @param memory such a text, or null, which does nothing
 */
BRIDGE_API void BRIDGE_CALL bridgeFreeMemory(void* memory);
/**@}*/

/** @name Programs
 * Each starts the player or the multi-instance manager with a command line and returns as soon as
 * the process has been created; what becomes of the work arrives later, as events.
 *
 * A program that Windows starts only elevated (its error 740) is started so: the call waits until
 * the user has consented, and answers 101223 when the user declines. Such a program runs with
 * another token and inherits none of the host's handles.
 */
/**@{*/

/**
 * Launches an app.
 * @param instance instance name
 * @param package  Android package name
 * @return 0, or the code of the failed process creation
 */
BRIDGE_API bridge_i32 BRIDGE_CALL bridgeLaunchApp(const char* instance, const char* package);

/**
 * Opens an app's page in an app store.
 * @param instance instance name
 * @param store    the store
 * @param package  Android package name
 * @return as for bridgeLaunchApp()
 */
BRIDGE_API bridge_i32 BRIDGE_CALL bridgeLaunchAppStore(const char* instance, const char* store,
                                                       const char* package);

/**
 * Opens a URL in an instance.
 * @param instance instance name
 * @param url      the URL
 * @return as for bridgeLaunchApp()
 */
BRIDGE_API bridge_i32 BRIDGE_CALL bridgeLaunchUrl(const char* instance, const char* url);

/**
 * Installs an APK file.
 * @param instance    instance name
 * @param apkFilePath the file
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
 * Creates a new instance. All values are texts; numbers in decimal.
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
 * Asks the player of one instance to shut down; does not wait for it to end.
 * @param instance instance name
 * @param flag     handed to the player unchanged
 * @return 0 when the request was handed to the connection, whether it arrived or not
 */
BRIDGE_API bridge_i32 BRIDGE_CALL bridgePlrShutdown(const char* instance, bridge_bool flag);

/** Asks the multi-instance manager and then the player of every known instance to shut down. */
BRIDGE_API void BRIDGE_CALL bridgeShutdown(void);
/**@}*/

/** @name Events and apps */
/**@{*/

/**
 * Starts the event server, on the first call, and sets the callbacks; a later call replaces all
 * nine, from inside a callback too. Any of them may be null, but slots 3 and 4 go together:
 * bridgeOnInstanceListUpdated is called exactly when bridgeOnApkInstallCompleted is set, and a null
 * one ends the process then.
 *
 * A server that cannot start is told by the log only: another process with the same client id has
 * its name. It is not tried again, nor after bridgeApiFini().
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
 * Lists the apps of an instance as JSON: an array of objects with the texts "package",
 * "activity", "appLabel", "versionName", "iconFilePath" and the number "versionCode", ordered by
 * package. Reads the instance's app cache, running or not; without one the array is empty. An icon
 * file need not exist. A cache that is no JSON array is deleted, and the array is empty. The array
 * is also empty, with an error in the log, while another program keeps the cache open for itself.
 * @param instance instance name
 * @return a new text for bridgeFreeMemory(); null, after an error in the log, when the app cache
 *         cannot be opened, has an element that is no object, or an app with a value that is
 *         missing or of another type
 */
BRIDGE_API char* BRIDGE_CALL bridgeGetInstalledApps(const char* instance);
/**@}*/

#ifdef __cplusplus
}
#endif

#endif
