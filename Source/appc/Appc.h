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
// Every function may be called from any thread. Texts are UTF-8.

struct AppcStore;

// The cache of this process.
AppcStore& appcStore();

// Opens the cache of an instance, in place of the one before: empties it, then loads the file.
// -1 when the machine-wide lock cannot be made, or from the load.
[[nodiscard]] XErr appcLibInit(AppcStore& store, const std::string& instance);

// Loads the file. Without one the cache stays as it is, and the result is 0. A file that cannot be
// opened, or is no JSON array, is deleted: the cache is empty then, and the result is 0 too. A bad
// element gives -1 and leaves the file alone; see appcReadFromJsonObj.
//
// A file that another process holds is waited for, up to half a second. If it is still held then
// (Windows errors 32 and 33), it is kept: the cache is empty, the result is 0, and saves are
// refused until a load has succeeded.
[[nodiscard]] XErr appcLoadFromFile(AppcStore& store);

// Whether saves are refused, since the last load left the file to another process that held it.
[[nodiscard]] bool appcRefusesSaves(AppcStore& store);

// Replaces the apps in memory. -1 at an element that is not an object, which keeps those before it,
// and for a key that is missing or mistyped, which empties the cache and leaves a log line.
[[nodiscard]] XErr appcReadFromJsonObj(AppcStore& store, const QJsonArray& apps);

// Writes the file through a temporary one; the parent of the cache's folder must exist. The code of
// the folder's creation, or -1 for the file: the old one is whole then. An old file that another
// process holds is waited for, up to half a second. -1 as well while appcRefusesSaves(): nothing is
// touched then.
[[nodiscard]] XErr appcSaveToFile(AppcStore& store);

// Looks an app up. Any of the pointers may be null. 2 (XERR_NOENT) when it is not cached.
[[nodiscard]] XErr appcGetApp(AppcStore& store, const std::string& package, std::string* activity,
                              std::string* appLabel, std::int32_t* versionCode,
                              std::string* versionName, std::string* iconFileName);

// Appends the package names, in byte order.
void appcGetPackages(AppcStore& store, std::list<std::string>& packages);

// Opens the cache of an instance and lists its apps as an indented JSON array, in byte order of
// their packages, each with the path of its icon. Both are one operation: another thread that opens
// the cache of another instance comes before or after. appcLibInit's status; `listing` stays as it
// was after a failure.
[[nodiscard]] XErr appcListApps(AppcStore& store, const std::string& instance,
                                std::string& listing);

// Replaces the whole cache by the array "apps" of a JSON object, and saves it. -1 when there is no
// such array (nothing changes then) or its elements cannot be read (nothing is saved, see
// appcReadFromJsonObj for the memory); else the result of the save.
[[nodiscard]] XErr appcSyncInstalledApps(AppcStore& store, const char* json);

// Adds an app, or replaces its values; moves the file `iconName` of the shared folder to the app's
// icon, if it can be; saves, with the save's result. An empty `iconName` moves nothing, and a
// folder is never moved. While appcRefusesSaves() the app changes in memory only, and the icon
// stays.
[[nodiscard]] XErr appcUpdateApp(AppcStore& store, const std::string& package,
                                 const std::string& activity, const std::string& appLabel,
                                 std::int32_t versionCode, const std::string& versionName,
                                 const std::string& iconName);

// Removes an app with its icon and saves, with the save's result. 0 when it is not cached: nothing
// is saved then. While appcRefusesSaves() the app is removed from memory only, and the icon stays.
[[nodiscard]] XErr appcRemoveApp(AppcStore& store, const std::string& package);

// Copies the cache's folder of one instance to another, which must not have one yet. 0 once the
// folder is made, whatever becomes of the files; else -1. The cache must be open, for any instance:
// its machine-wide lock is the one that is held.
[[nodiscard]] XErr appcCopyInstance(AppcStore& store, const std::string& baseInstance,
                                    const std::string& newInstance);

#endif
