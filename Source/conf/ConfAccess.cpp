// Typed access, pending changes and the current instance.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "conf/Conf.h"
#include "conf/ConfCatalogue.h"
#include "conf/ConfKey.h"
#include "conf/ConfNumber.h"
#include "conf/ConfStore.h"
#include "xpl/Xattributes.h"
#include "xpl/Xbytes.h"
#include "xpl/Xerr.h"
#include "xpl/XsharedMutex.h"

namespace {

// For a key that is already split. It has the same name because log lines show the function's name.
bool confValidateProp(const ConfKey& key, ConfType type, bool allowDeprecated) {
    const bool ofInstance = key.scope == ConfScope::Instance;
    if (key.declared == nullptr) {
        XLOG_E(kConfLog, "%s prop not found in %s", std::string(key.text).c_str(),
               ofInstance ? "iprop dir" : "prop dir");
        return false;
    }
    if (key.declared->type != type) {
        XLOG_E(kConfLog, "%s type of the %s is not matching", std::string(key.text).c_str(),
               ofInstance ? "iprop" : "prop");
        return false;
    }
    if (key.declared->deprecated && !allowDeprecated) {
        XLOG_E(kConfLog, "%s: Deprecated conf %s", "confValidateProp",
               std::string(key.text).c_str());
        return false;
    }
    return true;
}

// The value that a read returns; none for a key whose removal is pending.
std::optional<std::string> readValue(ConfStore& store, const ConfKey& key) {
    const XsharedGuard reading(store.viewLock);
    const ConfValue* const value = store.view.find(key);
    if (value == nullptr) return std::string();
    if (value->isRemoved) return std::nullopt;
    return value->staged == nullptr ? value->committed : *value->staged;
}

}  // namespace

bool confValidateProp(const ConfStore& store, std::string_view key, ConfType type,
                      bool allowDeprecated) {
    return confValidateProp(confFindKey(store.catalogue, key), type, allowDeprecated);
}

std::string confGetStringInternal(ConfStore& store, std::string_view text, ConfType type) {
    const ConfKey key = confFindKey(store.catalogue, text);
    if (!confValidateProp(key, type, store.allowDeprecated)) XLOG_FATAL(kConfLog);
    std::optional<std::string> value = readValue(store, key);
    if (value) return *std::move(value);
    XLOG_E(kConfLog, "%s Trying to access deleted prop: [%s]", "confGetStringInternal",
           std::string(text).c_str());
    XLOG_FATAL(kConfLog);
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
    XLOG_E(kConfLog, "confGetBool error for %s:%s\n", std::string(key).c_str(), value.c_str());
    XLOG_FATAL(kConfLog);
}

std::int32_t confGetI32(ConfStore& store, std::string_view key) {
    const std::string value = confGetStringInternal(store, key, ConfType::I32);
    std::int32_t number = 0;
    if (confParseI32(value, number)) return number;
    XLOG_E(kConfLog, "confGetI32 error for %s:%s\n", std::string(key).c_str(), value.c_str());
    XLOG_FATAL(kConfLog);
}

std::int64_t confGetI64(ConfStore& store, std::string_view key) {
    const std::string value = confGetStringInternal(store, key, ConfType::I64);
    std::int64_t number = 0;
    if (confParseI64(value, number)) return number;
    XLOG_E(kConfLog, "confGetI64 error for %s:%s\n", std::string(key).c_str(), value.c_str());
    XLOG_FATAL(kConfLog);
}

XErr confSetStringInternal(ConfStore& store, std::string_view text, ConfType type,
                           std::string_view value) {
    const ConfKey key = confFindKey(store.catalogue, text);
    if (type != ConfType::None && !confValidateProp(key, type, /*allowDeprecated=*/false)) {
        XLOG_FATAL(kConfLog);
    }
    const std::lock_guard<XsharedMutex> changing(store.viewLock);
    store.view.set(store.view.knownValue(key), value);
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
    bool isKnown = false;
    {
        const XsharedGuard reading(store.viewLock);
        isKnown = store.view.isKnown(name);
    }
    if (!isKnown) {
        XLOG_E(kConfLog, "Instance %s doesn't exist", name.c_str());
        return XERR_FAILURE;
    }
    store.currentInstance.change([&name](std::string& next) { next = name + "."; });
    return XERR_SUCCESS;
}

std::string confGetCurrentInstance(const ConfStore& store) {
    const Xrcu<std::string>::Reader current(store.currentInstance);
    if (current.get() == nullptr) return {};
    return current.get()->substr(0, current.get()->rfind('.'));
}

std::string confCurrentInstanceKey(const ConfStore& store, std::string_view property) {
    const Xrcu<std::string>::Reader current(store.currentInstance);
    std::string key(CONF_INSTANCE_PREFIX);
    if (current.get() != nullptr) key.append(*current.get());
    return key.append(property);
}

std::set<std::string, std::less<>> confGetInstances(ConfStore& store) {
    const XsharedGuard reading(store.viewLock);
    return store.view.instances();
}

XErr confRestorePropDefault(ConfStore& store, std::string_view text) {
    const std::string_view property = text.substr(std::min(text.size(), CONF_PREFIX.size()));
    const ConfProperty* const declared = store.catalogue.findGlobal(property);
    if (declared == nullptr) XLOG_FATAL(kConfLog);
    {
        const ConfKey key = confFindKey(store.catalogue, text);
        const XsharedGuard reading(store.viewLock);
        const ConfValue* const value = store.view.find(key);
        if (value != nullptr && value->isCommitted && value->committed == declared->defaultValue) {
            return XERR_SUCCESS;
        }
    }
    return confSetStringInternal(store, text, ConfType::None, declared->defaultValue);
}

bool confHasPendingChanges(ConfStore& store) {
    const XsharedGuard reading(store.viewLock);
    return store.view.hasChanges();
}

bool confIsPropPending(ConfStore& store, std::string_view text) {
    const ConfKey key = confFindKey(store.catalogue, text);
    const XsharedGuard reading(store.viewLock);
    const ConfValue* const value = store.view.find(key);
    return value != nullptr && value->isChanged();
}

XErr confDiscardChanges(ConfStore& store) {
    const std::lock_guard<XsharedMutex> changing(store.viewLock);
    store.view.discardChanges();
    return XERR_SUCCESS;
}
