/*
 * Every event, for C and C++, without the library's code. In the order of the slots, separated by
 * BETWEEN:
 *
 *     EVENT(opcode, callback type, slot, printed, name)
 *
 * "printed" is its name in the C++ wrapper and in the lines of the hosts, "name" that in programs.
 */
#ifndef TESTS_EVENT_TABLE_H
#define TESTS_EVENT_TABLE_H

#define KNOWN_EVENTS(EVENT, BETWEEN)                                                         \
    EVENT(3000, bridgeOnAppInstalled, onAppInstalled, appInstalled, "app-installed")         \
    BETWEEN                                                                                  \
    EVENT(3001, bridgeOnAppUninstalled, onAppUninstalled, appUninstalled, "app-uninstalled") \
    BETWEEN                                                                                  \
    EVENT(3002, bridgeOnApkInstallCompleted, onApkInstallCompleted, apkInstallCompleted,     \
          "apk-install-completed")                                                           \
    BETWEEN                                                                                  \
    EVENT(3003, bridgeOnInstanceListUpdated, onInstanceListUpdated, instanceListUpdated,     \
          "instance-list-updated")                                                           \
    BETWEEN                                                                                  \
    EVENT(3004, bridgeInstallImageProgress, installImageProgress, installImageProgress,      \
          "image-install-progress")                                                          \
    BETWEEN                                                                                  \
    EVENT(3005, bridgeOnCreateInstanceCompleted, onCreateInstanceCompleted,                  \
          createInstanceCompleted, "create-instance-completed")                              \
    BETWEEN                                                                                  \
    EVENT(3006, bridgeOnInstanceConfigurationChanged, onInstanceConfigurationChanged,        \
          instanceConfigurationChanged, "instance-configuration-changed")                    \
    BETWEEN                                                                                  \
    EVENT(3007, bridgeOnAppDisplayed, onAppDisplayed, appDisplayed, "app-displayed")         \
    BETWEEN                                                                                  \
    EVENT(3008, bridgeOnAccountListUpdated, onAccountListUpdated, accountListUpdated,        \
          "account-list-updated")

#define KNOWN_EVENTS_COMMA ,

#define KNOWN_EVENT_PLUS_ONE(opcode, type, slot, printed, name) +1
#define KNOWN_EVENT_COUNT (0 KNOWN_EVENTS(KNOWN_EVENT_PLUS_ONE, ))

/* The fields of the event with that slot, each with an example: TEXT(name, example) and so on. */
#define FIELDS_onAppInstalled(TEXT, I32, DOUBLE, FLAG, NONE)                         \
    TEXT(instance, "Nougat64"), TEXT(package, "com.größe"), TEXT(activity, "Main"),  \
        TEXT(appLabel, "第二 App"), I32(versionCode, -5), TEXT(versionName, "1.0β"), \
        TEXT(iconFilePath, "C:\\Ü.png"), FLAG(isUpdate, 1)
#define FIELDS_onAppUninstalled(TEXT, I32, DOUBLE, FLAG, NONE) \
    TEXT(instance, "Nougat64"), TEXT(package, "com.größe")
#define FIELDS_onApkInstallCompleted(TEXT, I32, DOUBLE, FLAG, NONE) \
    TEXT(instance, "Nougat64"), I32(status, -1), TEXT(apkFilePath, "C:\\Пример.apk")
#define FIELDS_onInstanceListUpdated(TEXT, I32, DOUBLE, FLAG, NONE) NONE
#define FIELDS_installImageProgress(TEXT, I32, DOUBLE, FLAG, NONE) \
    TEXT(imageName, "Nougat32"), I32(status, 1), DOUBLE(progress, 33.125)
#define FIELDS_onCreateInstanceCompleted(TEXT, I32, DOUBLE, FLAG, NONE) \
    I32(status, -2), TEXT(instance, "Nougat64_1")
#define FIELDS_onInstanceConfigurationChanged(TEXT, I32, DOUBLE, FLAG, NONE) \
    TEXT(instance, "Nougat64")
#define FIELDS_onAppDisplayed(TEXT, I32, DOUBLE, FLAG, NONE) \
    TEXT(instance, "Nougat64"), TEXT(package, "com.größe")
#define FIELDS_onAccountListUpdated(TEXT, I32, DOUBLE, FLAG, NONE) \
    TEXT(instance, "Nougat64"), TEXT(emailId, "jürgen@example.com"), I32(action, 2)

#endif
