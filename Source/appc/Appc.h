#ifndef APPC_APPC_H
#define APPC_APPC_H

#include <cstdint>
#include <list>
#include <string>

#include "xpl/Xerr.h"

class QJsonArray;

// The app cache: which Android apps an instance has, kept in a file that front ends can read
// without asking the running player. One cache holds one instance at a time.
//
// Thread-safe. Strings are UTF-8.

struct AppcStore;

// The cache of this process.
AppcStore& appcStore();

// Opens the cache of an instance in place of the previous one: empties it, then loads the file.
// Returns -1 when the machine-wide lock cannot be created, else the result of the load.
[[nodiscard]] XErr appcLibInit(AppcStore& store, const std::string& instance);

// Loads the file. Without one, leaves the cache unchanged and returns 0. A file that cannot be
// opened or is not a JSON array is deleted; the cache is then empty and the result 0. A bad element
// returns -1 and leaves the file alone; see appcReadFromJsonObj.
//
// Waits up to half a second for a file that another process uses. If it is still in use (Windows
// errors 32 and 33), the file is kept: the cache is empty, the result is 0, and saves are refused
// until a load succeeds.
[[nodiscard]] XErr appcLoadFromFile(AppcStore& store);

// Whether saves are refused, because another process used the file during the last load.
[[nodiscard]] bool appcRefusesSaves(AppcStore& store);

// Replaces the apps in memory. Returns -1 at an element that is not an object, keeping those before
// it, and for a missing key or a value of the wrong type, which is logged and empties the cache.
[[nodiscard]] XErr appcReadFromJsonObj(AppcStore& store, const QJsonArray& apps);

// Writes the file through a temporary one; the parent of the cache's folder must exist. Returns the
// error of creating the folder, or -1 for the file; the old file then stays intact. Waits up to
// half a second for another process that uses the old file. Returns -1 and changes nothing while
// appcRefusesSaves().
[[nodiscard]] XErr appcSaveToFile(AppcStore& store);

// Looks up an app. Any of the pointers may be null. Returns 2 (XERR_NOENT) when it is not cached.
[[nodiscard]] XErr appcGetApp(AppcStore& store, const std::string& package, std::string* activity,
                              std::string* appLabel, std::int32_t* versionCode,
                              std::string* versionName, std::string* iconFileName);

// Appends the package names, in byte order.
void appcGetPackages(AppcStore& store, std::list<std::string>& packages);

// Opens the cache of an instance and lists its apps as an indented JSON array, in byte order of
// their packages, each with the path of its icon. Atomic with respect to other threads that open a
// cache. Returns the status of appcLibInit; after a failure `listing` is unchanged.
[[nodiscard]] XErr appcListApps(AppcStore& store, const std::string& instance,
                                std::string& listing);

// Replaces the whole cache with the array "apps" of a JSON object, and saves it. Returns -1 when
// there is no such array (nothing changes) or an element cannot be read (nothing is saved; see
// appcReadFromJsonObj), else the result of the save.
[[nodiscard]] XErr appcSyncInstalledApps(AppcStore& store, const char* json);

// Adds an app or replaces its values, moves the file `iconName` from the shared folder to the app's
// icon if possible, and saves. Returns the result of the save. An empty `iconName` moves nothing,
// and a folder is never moved. While appcRefusesSaves(), the app changes in memory only and the
// icon stays.
[[nodiscard]] XErr appcUpdateApp(AppcStore& store, const std::string& package,
                                 const std::string& activity, const std::string& appLabel,
                                 std::int32_t versionCode, const std::string& versionName,
                                 const std::string& iconName);

// Removes an app and its icon, and saves. Returns the result of the save, or 0 without saving when
// the app is not cached. While appcRefusesSaves(), the app is removed from memory only and the icon
// stays.
[[nodiscard]] XErr appcRemoveApp(AppcStore& store, const std::string& package);

// Copies an instance's cache folder to another instance, which must not have one yet. Returns 0
// once the folder is created, even if files fail to copy, else -1. The cache must be open for any
// instance, since that instance's machine-wide lock is taken.
[[nodiscard]] XErr appcCopyInstance(AppcStore& store, const std::string& baseInstance,
                                    const std::string& newInstance);

#endif
