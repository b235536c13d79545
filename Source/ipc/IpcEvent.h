#ifndef IPC_IPCEVENT_H
#define IPC_IPCEVENT_H

#include <cstddef>
#include <cstdint>
#include <initializer_list>

// The events that the product's programs send to front ends. Everything that decodes, sends, prints
// or documents them is generated from this table.

// X(opcode, event, callback, slot, name, field count, fields), in the order of the slots.
// `callback` and `slot` are the type and the parameter in bridge.h; the fields are the callback's
// parameters. `name` is used by programs and scripts.
#define IPC_EVENTS(X)                                                                            \
    X(3000, AppInstalled, bridgeOnAppInstalled, onAppInstalled, "app-installed", 8,              \
      {{"instance", IPC_TEXT},                                                                   \
       {"package", IPC_TEXT},                                                                    \
       {"activity", IPC_TEXT},                                                                   \
       {"appLabel", IPC_TEXT},                                                                   \
       {"versionCode", IPC_I32},                                                                 \
       {"versionName", IPC_TEXT},                                                                \
       {"iconFilePath", IPC_TEXT},                                                               \
       {"isUpdate", IPC_FLAG}})                                                                  \
    X(3001, AppUninstalled, bridgeOnAppUninstalled, onAppUninstalled, "app-uninstalled", 2,      \
      {{"instance", IPC_TEXT}, {"package", IPC_TEXT}})                                           \
    X(3002, ApkInstallCompleted, bridgeOnApkInstallCompleted, onApkInstallCompleted,             \
      "apk-install-completed", 3,                                                                \
      {{"instance", IPC_TEXT}, {"status", IPC_I32}, {"apkFilePath", IPC_TEXT}})                  \
    X(3003, InstanceListUpdated, bridgeOnInstanceListUpdated, onInstanceListUpdated,             \
      "instance-list-updated", 0, {})                                                            \
    X(3004, InstallImageProgress, bridgeInstallImageProgress, installImageProgress,              \
      "image-install-progress", 3,                                                               \
      {{"imageName", IPC_TEXT}, {"status", IPC_I32}, {"progress", IPC_DOUBLE}})                  \
    X(3005, CreateInstanceCompleted, bridgeOnCreateInstanceCompleted, onCreateInstanceCompleted, \
      "create-instance-completed", 2, {{"status", IPC_I32}, {"instance", IPC_TEXT}})             \
    X(3006, InstanceConfigurationChanged, bridgeOnInstanceConfigurationChanged,                  \
      onInstanceConfigurationChanged, "instance-configuration-changed", 1,                       \
      {{"instance", IPC_TEXT}})                                                                  \
    X(3007, AppDisplayed, bridgeOnAppDisplayed, onAppDisplayed, "app-displayed", 2,              \
      {{"instance", IPC_TEXT}, {"package", IPC_TEXT}})                                           \
    X(3008, AccountListUpdated, bridgeOnAccountListUpdated, onAccountListUpdated,                \
      "account-list-updated", 3,                                                                 \
      {{"instance", IPC_TEXT}, {"emailId", IPC_TEXT}, {"action", IPC_I32}})

enum IpcEventFieldType {
    IPC_TEXT,
    IPC_I32,
    IPC_DOUBLE,
    IPC_FLAG,  // one byte, unlike the bool of requests; non-zero means true
};

struct IpcEventField {
    const char* name;
    IpcEventFieldType type;
};

struct IpcEvent {
    std::uint32_t opcode;
    const char* name;
    std::size_t fieldCount;
    IpcEventField fields[8];
};

// The rows of the table.
inline constexpr IpcEvent IPC_EVENT_ROWS[] = {
#define IPC_EVENT_ROW(opcode, event, callback, slot, name, ...) {opcode, name, __VA_ARGS__},
    IPC_EVENTS(IPC_EVENT_ROW)
#undef IPC_EVENT_ROW
};

// The field type of a callback parameter.
constexpr IpcEventFieldType ipcFieldType(const char*) { return IPC_TEXT; }
constexpr IpcEventFieldType ipcFieldType(std::int32_t) { return IPC_I32; }
constexpr IpcEventFieldType ipcFieldType(double) { return IPC_DOUBLE; }
constexpr IpcEventFieldType ipcFieldType(std::uint8_t) { return IPC_FLAG; }

// Whether a callback's parameters match the event's fields.
template <typename... Parameters>
constexpr bool ipcTakesFields(const IpcEvent& event) {
    const std::initializer_list<IpcEventFieldType> types{ipcFieldType(Parameters{})...};
    std::size_t taken = 0;
    for (const IpcEventFieldType type : types) {
        if (taken == event.fieldCount || event.fields[taken++].type != type) return false;
    }
    return taken == event.fieldCount;
}

#endif
