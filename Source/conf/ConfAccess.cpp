// Typed access, pending changes and the current instance.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "conf/Conf.h"
#include "conf/ConfCatalogue.h"
#include "conf/ConfKey.h"
#include "conf/ConfLoad.h"
#include "conf/ConfLog.h"
#include "conf/ConfNumber.h"
#include "conf/ConfStore.h"
#include "xpl/Xattributes.h"
#include "xpl/Xbytes.h"
#include "xpl/Xerr.h"

namespace {

// A key, and what its declaration says.
struct Declaration {
    ConfKey key;
    const ConfProperty* property;  // null: there is none
    std::size_t place;             // among the properties of its directory
    const char* kind;              // for "type of the ... is not matching"
    const char* directory;         // for "prop not found in ..."
};

Declaration declarationOf(const ConfKey& key, const ConfDirectory& properties, const char* kind,
                          const char* directory) {
    const auto found = properties.find(key.property);
    const auto place = static_cast<std::size_t>(found - properties.begin());
    return {key, found == properties.end() ? nullptr : &found->second, place, kind, directory};
}

Declaration declarationOf(const ConfCatalogue& catalogue, std::string_view text) {
    const ConfKey key = confSplitKey(text);
    switch (key.scope) {
        case ConfScope::Instance:
            return declarationOf(key, catalogue.instances(), "iprop", "iprop dir");
        case ConfScope::Global:
            return declarationOf(key, catalogue.globals(), "prop", "prop dir");
        case ConfScope::None:
            break;
    }
    return {key, nullptr, 0, "prop", "prop dir"};
}

// For callers that have looked the key up already. The same name, because log lines carry it.
bool confValidateProp(const Declaration& declared, std::string_view key, ConfType type,
                      bool allowDeprecated) {
    if (declared.property == nullptr) {
        XLOG_E(kLog, "%s prop not found in %s", std::string(key).c_str(), declared.directory);
        return false;
    }
    if (declared.property->type != type) {
        XLOG_E(kLog, "%s type of the %s is not matching", std::string(key).c_str(), declared.kind);
        return false;
    }
    if (declared.property->deprecated && !allowDeprecated) {
        XLOG_E(kLog, "%s: Deprecated conf %s", "confValidateProp", std::string(key).c_str());
        return false;
    }
    return true;
}

// The value that a read sees; null when there is none.
const std::string* effectiveValue(const ConfStore& store, std::string_view key, std::size_t place)
    XTS_REQUIRES(store.lock) {
    if (!store.pending.empty()) {
        if (const std::string* const changed = store.pending.find(key)) return changed;
    }
    return store.values.find(key, place);
}

bool isCommittedValue(const ConfStore& store, std::string_view key, std::size_t place,
                      std::string_view value) XTS_REQUIRES(store.lock) {
    const std::string* const committed = store.values.find(key, place);
    return committed != nullptr && xbytesSame(*committed, value);
}

void makeInstanceKnown(ConfStore& store, const ConfKey& key) XTS_REQUIRES(store.lock) {
    if (key.scope == ConfScope::Instance && !store.instances.contains(key.instance)) {
        confAddInstanceLocked(store, key.instance);
    }
}

}  // namespace

bool confValidateProp(const ConfStore& store, std::string_view key, ConfType type,
                      bool allowDeprecated) {
    return confValidateProp(declarationOf(store.catalogue, key), key, type, allowDeprecated);
}

std::string confGetStringInternal(ConfStore& store, std::string_view key, ConfType type) {
    const Declaration declared = declarationOf(store.catalogue, key);
    if (!confValidateProp(declared, key, type, store.allowDeprecated)) XLOG_FATAL(kLog);
    const std::lock_guard<std::mutex> guard(store.lock);
    if (!store.removals.empty() && store.removals.find(key) != store.removals.end()) {
        XLOG_E(kLog, "%s Trying to access deleted prop: [%s]", "confGetStringInternal",
               std::string(key).c_str());
        XLOG_FATAL(kLog);
    }
    const std::string* const value = effectiveValue(store, key, declared.place);
    return value == nullptr ? std::string() : *value;
}

std::string confGetString(ConfStore& store, std::string_view key) {
    return confGetStringInternal(store, key, ConfType::String);
}

std::string confGetMultiString(ConfStore& store, std::string_view key) {
    return confGetStringInternal(store, key, ConfType::MultiString);
}

std::vector<std::string> confGetMultiStringList(ConfStore& store, std::string_view key) {
    return confSplitMultiString(confGetMultiString(store, key));
}

bool confGetBool(ConfStore& store, std::string_view key) {
    const std::string value = confGetStringInternal(store, key, ConfType::Bool);
    if (value == "0") return false;
    if (value == "1") return true;
    XLOG_E(kLog, "confGetBool error for %s:%s\n", std::string(key).c_str(), value.c_str());
    XLOG_FATAL(kLog);
}

std::int32_t confGetI32(ConfStore& store, std::string_view key) {
    const std::string value = confGetStringInternal(store, key, ConfType::I32);
    std::int32_t number = 0;
    if (confParseI32(value, number)) return number;
    XLOG_E(kLog, "confGetI32 error for %s:%s\n", std::string(key).c_str(), value.c_str());
    XLOG_FATAL(kLog);
}

std::int64_t confGetI64(ConfStore& store, std::string_view key) {
    const std::string value = confGetStringInternal(store, key, ConfType::I64);
    std::int64_t number = 0;
    if (confParseI64(value, number)) return number;
    XLOG_E(kLog, "confGetI64 error for %s:%s\n", std::string(key).c_str(), value.c_str());
    XLOG_FATAL(kLog);
}

XErr confSetStringInternal(ConfStore& store, std::string_view key, ConfType type,
                           std::string_view value) {
    const Declaration declared = declarationOf(store.catalogue, key);
    if (type != ConfType::None &&
        !confValidateProp(declared, key, type, /*allowDeprecated=*/false)) {
        XLOG_FATAL(kLog);
    }
    const std::lock_guard<std::mutex> guard(store.lock);
    makeInstanceKnown(store, declared.key);
    if (isCommittedValue(store, key, declared.place, value)) {
        store.pending.erase(key);
    } else {
        store.pending.assign(key, value);
    }
    const auto removed = store.removals.find(key);
    if (removed != store.removals.end()) store.removals.erase(removed);
    return XERR_SUCCESS;
}

XErr confSetString(ConfStore& store, std::string_view key, std::string_view value) {
    return confSetStringInternal(store, key, ConfType::String, value);
}

XErr confSetMultiString(ConfStore& store, std::string_view key, std::string_view value) {
    return confSetStringInternal(store, key, ConfType::MultiString, value);
}

XErr confSetMultiStringList(ConfStore& store, std::string_view key,
                            const std::vector<std::string>& elements) {
    return confSetMultiString(store, key, confJoinMultiString(elements));
}

XErr confSetBool(ConfStore& store, std::string_view key, bool value) {
    return confSetStringInternal(store, key, ConfType::Bool, value ? "1" : "0");
}

XErr confSetI32(ConfStore& store, std::string_view key, std::int32_t value) {
    return confSetStringInternal(store, key, ConfType::I32, std::to_string(value));
}

XErr confSetI64(ConfStore& store, std::string_view key, std::int64_t value) {
    return confSetStringInternal(store, key, ConfType::I64, std::to_string(value));
}

std::vector<std::string> confSplitMultiString(std::string_view text) {
    std::vector<std::string> elements;
    if (text.empty()) return elements;
    for (;;) {
        const std::size_t comma = text.find(',');
        elements.emplace_back(text.substr(0, comma));
        if (comma == std::string_view::npos) return elements;
        text.remove_prefix(comma + 1);
    }
}

std::string confJoinMultiString(const std::vector<std::string>& elements) {
    std::string text;
    for (const std::string& element : elements) {
        if (!text.empty()) text += ',';
        text += element;
    }
    return text;
}

XErr confSetCurrentInstance(ConfStore& store, const std::string& name) {
    const std::lock_guard<std::mutex> guard(store.lock);
    if (!store.instances.contains(name)) {
        XLOG_E(kLog, "Instance %s doesn't exist", name.c_str());
        return XERR_FAILURE;
    }
    std::atomic_store(&store.currentInstance, std::make_shared<const std::string>(name + "."));
    return XERR_SUCCESS;
}

std::string confGetCurrentInstance(const ConfStore& store) {
    const auto current = std::atomic_load(&store.currentInstance);
    return current == nullptr ? std::string() : current->substr(0, current->rfind('.'));
}

std::string confCurrentInstanceKey(const ConfStore& store, std::string_view property) {
    const auto current = std::atomic_load(&store.currentInstance);
    std::string key(CONF_INSTANCE_PREFIX);
    if (current != nullptr) key.append(*current);
    return key.append(property);
}

std::set<std::string, std::less<>> confGetInstances(ConfStore& store) {
    const std::lock_guard<std::mutex> guard(store.lock);
    return store.instances.all();
}

XErr confRestorePropDefault(ConfStore& store, std::string_view key) {
    const std::string_view property = key.substr(std::min(key.size(), CONF_PREFIX.size()));
    const ConfProperty* declared = store.catalogue.findGlobal(property);
    if (declared == nullptr) XLOG_FATAL(kLog);
    {
        const std::lock_guard<std::mutex> guard(store.lock);
        if (isCommittedValue(store, key, /*place=*/0, declared->defaultValue)) return XERR_SUCCESS;
    }
    return confSetStringInternal(store, key, ConfType::None, declared->defaultValue);
}

bool confHasPendingChanges(ConfStore& store) {
    const std::lock_guard<std::mutex> guard(store.lock);
    return !store.pending.empty() || !store.removals.empty();
}

bool confIsPropPending(ConfStore& store, std::string_view key) {
    const std::lock_guard<std::mutex> guard(store.lock);
    return store.pending.find(key) != nullptr || store.removals.find(key) != store.removals.end();
}

XErr confDiscardChanges(ConfStore& store) {
    const std::lock_guard<std::mutex> guard(store.lock);
    store.pending.clear();
    store.removals.clear();
    return XERR_SUCCESS;
}
