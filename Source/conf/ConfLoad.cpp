// Initialisation, loading and reloading.
#include "conf/ConfLoad.h"

#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "conf/Conf.h"
#include "conf/ConfCatalogue.h"
#include "conf/ConfFiles.h"
#include "conf/ConfKey.h"
#include "conf/ConfText.h"
#include "conf/ConfViewText.h"
#include "xpl/Xattributes.h"
#include "xpl/Xbytes.h"
#include "xpl/Xerr.h"
#include "xpl/XmutexNamed.h"
#include "xpl/XsharedMutex.h"
#include "xpl/Xunload.h"

namespace {

void fillGlobalDefaults(ConfStore& store) XTS_REQUIRES(store.lock, store.viewLock) {
    store.view.commitGlobalDefaults();
    for (const auto& [name, property] : store.catalogue.globals()) {
        if (property.deprecated) store.deprecated.insert(confGlobalKey(name));
    }
}

void applyDefaults(ConfStore& store) XTS_REQUIRES(store.lock) {
    const std::lock_guard<XsharedMutex> changing(store.viewLock);
    fillGlobalDefaults(store);
}

// Applies the defaults when reading throws, as after any other failed read.
XErr readFileOrApplyDefaults(ConfStore& store, std::string& text) XTS_REQUIRES(store.lock) {
    try {
        return confReadFile(store, text);
    } catch (...) {
        applyDefaults(store);
        throw;
    }
}

// Applies the defaults and the file's values in one critical section, so that a read never sees the
// default of a key that the file has. Applies the defaults even when the file cannot be read.
XErr applyDefaultsAndFile(ConfStore& store) XTS_REQUIRES(store.lock) {
    const XnamedGuard otherProcesses(store.fileLock, kConfLog, "confLibInit");
    std::string text;
    const XErr err = readFileOrApplyDefaults(store, text);
    std::optional<ConfBadLine> bad;
    {
        const std::lock_guard<XsharedMutex> changing(store.viewLock);
        fillGlobalDefaults(store);
        if (err == XERR_SUCCESS) bad = confApplyFile(store, text);
    }
    return err == XERR_SUCCESS ? confReport(bad) : err;
}

}  // namespace

XErr confReadFile(ConfStore& store, std::string& text) {
    if (store.path.empty()) return XERR_SUCCESS;
    switch (store.files.read(store.path, text)) {
        case ConfFileRead::Done:
            return XERR_SUCCESS;
        case ConfFileRead::OpenFailed:
            XLOG_E(kConfLog, "open failed for %s", store.path.c_str());
            break;
        case ConfFileRead::ReadFailed:
            XLOG_E(kConfLog, "read failed for %s", store.path.c_str());
            break;
    }
    return XERR_FAILURE;
}

std::optional<ConfBadLine> confApplyFile(ConfStore& store, std::string_view text) {
    if (store.path.empty()) return std::nullopt;
    return confReadView(store.view, store.deprecated, text);
}

XErr confReport(const std::optional<ConfBadLine>& bad) {
    if (!bad) return XERR_SUCCESS;
    if (bad->directory == nullptr) {
        XLOG_E(kConfLog, "conf file not in correct format, %s", std::string(bad->line).c_str());
    } else {
        XLOG_E(kConfLog, "%s prop not found in %s: %s", std::string(bad->key).c_str(),
               bad->directory, std::string(bad->line).c_str());
    }
    return XERR_FAILURE;
}

ConfStore& confStore() {
    static const ConfCatalogue& catalogue = *xunloadKeep<ConfCatalogue>(confProductCatalogue());
    static ConfStore& store = *xunloadKeep<ConfStore>(catalogue, confDiskFiles());
    return store;
}

XErr confLibInit(ConfStore& store, const std::string& path, bool allowDeprecated) {
    const std::lock_guard<std::mutex> guard(store.lock);
    store.allowDeprecated = allowDeprecated;
    store.path = path;
    const XErr err = store.fileLock.init(store.fileLockName);
    if (err == XERR_SUCCESS) return applyDefaultsAndFile(store);
    applyDefaults(store);
    return err;
}

XErr confReload(ConfStore& store) {
    const std::lock_guard<std::mutex> guard(store.lock);
    const XnamedGuard otherProcesses(store.fileLock, kConfLog, "confReload");
    std::string text;
    if (const XErr err = confReadFile(store, text); err != XERR_SUCCESS) return err;
    std::optional<ConfBadLine> bad;
    {
        const std::lock_guard<XsharedMutex> changing(store.viewLock);
        bad = confApplyFile(store, text);
    }
    return confReport(bad);
}

XErr confAddInstance(ConfStore& store, const std::string& name) {
    const std::lock_guard<XsharedMutex> changing(store.viewLock);
    store.view.addInstance(name);
    return XERR_SUCCESS;
}
