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
#include "conf/ConfLog.h"
#include "conf/ConfText.h"
#include "conf/ConfViewText.h"
#include "xpl/Xattributes.h"
#include "xpl/Xbytes.h"
#include "xpl/Xerr.h"
#include "xpl/XmutexNamed.h"
#include "xpl/Xunload.h"

namespace {

XErr refuse(const ConfBadLine& bad) {
    XLOG_E(kLog, "%s prop not found in %s: %s", std::string(bad.key).c_str(), bad.directory,
           std::string(bad.line).c_str());
    return XERR_FAILURE;
}

XErr applyContent(ConfStore& store, std::string_view content) XTS_REQUIRES(store.lock) {
    const auto bad = confReadView(store.view, store.deprecated, content);
    if (!bad) return XERR_SUCCESS;
    if (bad->directory != nullptr) return refuse(*bad);
    XLOG_E(kLog, "conf file not in correct format, %s", std::string(bad->line).c_str());
    return XERR_FAILURE;
}

void fillGlobalDefaults(ConfStore& store) XTS_REQUIRES(store.lock) {
    store.view.commitGlobalDefaults();
    for (const auto& [name, property] : store.catalogue.globals()) {
        if (property.deprecated) store.deprecated.insert(confGlobalKey(name));
    }
}

XErr loadUnderFileLock(ConfStore& store) XTS_REQUIRES(store.lock) {
    const std::lock_guard<XmutexNamed> otherProcesses(store.fileLock);
    return confLoad(store);
}

}  // namespace

XErr confLoad(ConfStore& store) {
    std::string text;
    return confLoad(store, text);
}

XErr confLoad(ConfStore& store, std::string& text) {
    if (store.path.empty()) return XERR_SUCCESS;
    switch (store.files.read(store.path, text)) {
        case ConfFileRead::Done:
            return applyContent(store, text);
        case ConfFileRead::OpenFailed:
            XLOG_E(kLog, "open failed for %s", store.path.c_str());
            break;
        case ConfFileRead::ReadFailed:
            XLOG_E(kLog, "read failed for %s", store.path.c_str());
            break;
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
    fillGlobalDefaults(store);
    store.path = path;
    if (const XErr err = store.fileLock.init(store.fileLockName); err != XERR_SUCCESS) {
        return err;
    }
    return loadUnderFileLock(store);
}

XErr confReload(ConfStore& store) {
    const std::lock_guard<std::mutex> guard(store.lock);
    return loadUnderFileLock(store);
}

XErr confAddInstance(ConfStore& store, const std::string& name) {
    const std::lock_guard<std::mutex> guard(store.lock);
    store.view.addInstance(name);
    return XERR_SUCCESS;
}
