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
#include "xpl/Xattributes.h"
#include "xpl/Xbytes.h"
#include "xpl/Xerr.h"
#include "xpl/XmutexNamed.h"
#include "xpl/Xunload.h"

namespace {

// Applies the entries of a file to one store, in file order. Entries usually come in key order, so
// each step remembers where the one before ended. The store is handed to each step, so that the
// compiler sees whose lock is held.
class Loader {
 public:
    explicit Loader(ConfStore& store) XTS_REQUIRES(store.lock)
        : feed_(store.values), expected_(store.catalogue.instances().begin()) {}

    // False when the key has no property; logged.
    bool apply(ConfStore& store, const ConfEntry& entry) XTS_REQUIRES(store.lock) {
        const ConfKey key = splitKey(entry.key);
        switch (key.scope) {
            case ConfScope::Instance:
                return applyInstance(store, entry, key);
            case ConfScope::Global:
                return applyGlobal(store, entry, key);
            case ConfScope::None:
                break;
        }
        return refuse(entry, "prop dir");
    }

 private:
    // A key of the same instance as the one before needs no second look.
    ConfKey splitKey(std::string_view key) const {
        if (prefix_.empty() || !xbytesStartsWith(key, prefix_)) return confSplitKey(key);
        return {ConfScope::Instance, *instance_, key.substr(prefix_.size())};
    }

    bool applyInstance(ConfStore& store, const ConfEntry& entry, const ConfKey& key)
        XTS_REQUIRES(store.lock) {
        const auto* const declared = instanceProperty(store.catalogue.instances(), key.property);
        if (declared == nullptr) return refuse(entry, "iprop dir");
        if (!instance_ || !xbytesSame(*instance_, key.instance)) enter(store, key.instance);
        prefix_ = entry.key.substr(0, entry.key.size() - key.property.size());
        feed_.assignInInstance(declared->first, entry.value);
        if (declared->second.deprecated) store.deprecated.emplace(entry.key);
        return true;
    }

    static bool applyGlobal(ConfStore& store, const ConfEntry& entry, const ConfKey& key)
        XTS_REQUIRES(store.lock) {
        const ConfProperty* property = store.catalogue.findGlobal(key.property);
        if (property == nullptr) return refuse(entry, "prop dir");
        store.values.assign(entry.key, entry.value);
        if (property->deprecated) store.deprecated.emplace(entry.key);
        return true;
    }

    const ConfDirectory::Entry* instanceProperty(const ConfDirectory& directory,
                                                 std::string_view name) {
        if (expected_ == directory.end()) expected_ = directory.begin();
        if (expected_ == directory.end() || !xbytesSame(expected_->first, name)) {
            expected_ = directory.find(name);
            if (expected_ == directory.end()) return nullptr;
        }
        return &*expected_++;
    }

    void enter(ConfStore& store, std::string_view name) XTS_REQUIRES(store.lock) {
        if (!store.instances.contains(name)) confAddInstanceLocked(store, name);
        instance_ = name;
        feed_.enterInstance(name);
    }

    static bool refuse(const ConfEntry& entry, const char* directory) {
        XLOG_E(kLog, "%s prop not found in %s: %s", std::string(entry.key).c_str(), directory,
               std::string(entry.line).c_str());
        return false;
    }

    ConfValueFeed feed_;
    std::optional<std::string_view> instance_;
    std::string_view prefix_;  // of its keys
    ConfDirectory::const_iterator expected_;
};

XErr applyContent(ConfStore& store, std::string_view content) XTS_REQUIRES(store.lock) {
    store.instances.clear();
    ConfTextReader reader(content);
    Loader loader(store);
    for (ConfEntry entry;;) {
        switch (reader.next(entry)) {
            case ConfRead::End:
                return XERR_SUCCESS;
            case ConfRead::Malformed:
                XLOG_E(kLog, "conf file not in correct format, %s",
                       std::string(entry.line).c_str());
                return XERR_FAILURE;
            case ConfRead::Entry:
                if (!loader.apply(store, entry)) return XERR_FAILURE;
        }
    }
}

void fillGlobalDefaults(ConfStore& store) XTS_REQUIRES(store.lock) {
    for (const auto& [name, property] : store.catalogue.globals()) {
        const std::string key = confGlobalKey(name);
        store.values.assign(key, property.defaultValue);
        if (property.deprecated) store.deprecated.insert(key);
    }
}

XErr loadUnderFileLock(ConfStore& store) XTS_REQUIRES(store.lock) {
    const std::lock_guard<XmutexNamed> otherProcesses(store.fileLock);
    return confLoad(store);
}

}  // namespace

XErr confAddInstanceLocked(ConfStore& store, std::string_view name) {
    // A known instance has its defaults, also when memory runs out between the two.
    store.values.addMissing(name, store.catalogue.instances());
    store.instances.add(name);
    return XERR_SUCCESS;
}

XErr confLoad(ConfStore& store) {
    if (store.path.empty()) return XERR_SUCCESS;
    std::string content;
    switch (store.files.read(store.path, content)) {
        case ConfFileRead::Done:
            return applyContent(store, content);
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
    static const ConfCatalogue& catalogue = xunloadKeep<ConfCatalogue>(confProductCatalogue());
    static ConfStore& store = xunloadKeep<ConfStore>(catalogue, confDiskFiles());
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
    return confAddInstanceLocked(store, name);
}
