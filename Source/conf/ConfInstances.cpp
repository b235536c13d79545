// Whole instances: copying, removing, and the dump of the current one.
#include <cstdint>
#include <cstring>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "conf/Conf.h"
#include "conf/ConfCatalogue.h"
#include "conf/ConfKey.h"
#include "conf/ConfLog.h"
#include "conf/ConfStore.h"
#include "utl/UtlImages.h"
#include "xpl/Xattributes.h"
#include "xpl/Xbytes.h"
#include "xpl/Xerr.h"

namespace {

// A committed setting of an instance; valid until the value map changes.
struct InstanceEntry {
    std::string_view property;
    const std::string& value;
};

// What is behind `start` in the key that two parts make; nothing when it begins otherwise. The
// first part may end within `start`: the keys of "A.B" are those of "A" that begin with "B.".
std::optional<std::string_view> rest(std::string_view prefix, std::string_view name,
                                     std::string_view start) {
    if (prefix.empty() || !xbytesStartsWith(start, prefix)) return std::nullopt;
    const std::string_view left = start.substr(prefix.size());
    if (!xbytesStartsWith(name, left)) return std::nullopt;
    return name.substr(left.size());
}

// Of the instance whose keys begin with `start`, in key order.
std::vector<InstanceEntry> entriesOfInstance(const ConfStore& store, std::string_view start)
    XTS_REQUIRES(store.lock) {
    std::vector<InstanceEntry> entries;
    store.values.forEach(
        [&](std::string_view prefix, std::string_view name, const std::string& value) {
            const auto property = rest(prefix, name, start);
            if (property) entries.push_back({*property, value});
        });
    return entries;
}

// The room that readers of a dump have for a key and for a value, in bytes, without a NUL.
constexpr std::size_t kDumpKeyMax = 31;
constexpr std::size_t kDumpValueMax = 91;

// An entry of the value map, as its forEach hands it over.
struct StoredEntry {
    std::string_view prefix;  // empty for a global key
    std::string_view name;
    const std::string& value;

    std::string key() const { return std::string(prefix).append(name); }
};

// A line of the dump.
struct DumpEntry {
    std::string shown;  // key
    StoredEntry stored;

    bool fits() const {
        return shown.size() <= kDumpKeyMax && stored.value.size() <= kDumpValueMax;
    }
};

// Nothing for what the catalogue excludes.
std::optional<DumpEntry> dumpEntryOf(const ConfCatalogue& catalogue, const StoredEntry& stored) {
    const bool isGlobal = stored.prefix.empty();
    const std::string_view property = isGlobal ? confSplitKey(stored.name).property : stored.name;
    const ConfProperty* declared =
        isGlobal ? catalogue.findGlobal(property) : catalogue.findInstance(property);
    if (declared == nullptr || declared->excludeFromAllConfigs) return std::nullopt;
    return DumpEntry{confGlobalKey(property), stored};
}

// Calls visit(entry) for each line, in the order of the stored keys.
template <typename Visit>
void forEachDumpEntry(const ConfStore& store, Visit visit) XTS_REQUIRES(store.lock) {
    // Without a current instance this is the prefix of no instance.
    const std::string current = confCurrentInstanceKey(store, {});
    store.values.forEach(
        [&](std::string_view prefix, std::string_view name, const std::string& value) {
            if (!prefix.empty() && prefix != current) return;
            const auto entry = dumpEntryOf(store.catalogue, {prefix, name, value});
            if (entry) visit(*entry);
        });
}

void appendDumpLine(std::string& dump, const DumpEntry& entry) {
    if (!entry.fits()) {
        XLOG_E(kLog, "Invalid conf entry. Key = '%s', value = '%s'", entry.stored.key().c_str(),
               entry.stored.value.c_str());
        XLOG_FATAL(kLog);
    }
    dump.append(entry.shown).append("=").append(entry.stored.value).append("\n");
}

}  // namespace

bool confIsInstanceName(std::string_view name) {
    constexpr std::string_view kEndsAKey{".=\n\0", 4};
    return name.find_first_of(kEndsAKey) == std::string_view::npos;
}

XErr confCopyInstance(ConfStore& store, const std::string& source, const std::string& target) {
    const std::string sourcePrefix = confInstancePrefix(source);
    const std::string targetPrefix = confInstancePrefix(target);
    const std::lock_guard<std::mutex> guard(store.lock);
    if (!store.instances.contains(source)) {
        XLOG_E(kLog, "Instance %s doesn't exist", source.c_str());
        return XERR_FAILURE;
    }
    if (!confIsInstanceName(target)) {
        // Committed, its keys would stop every later load of every program.
        XLOG_E(kLog, "%s: invalid instance name %s", "confCopyInstance", target.c_str());
        return XERR_INVAL;
    }
    for (const InstanceEntry& entry : entriesOfInstance(store, sourcePrefix)) {
        const std::string property(entry.property);
        if (store.deprecated.count(sourcePrefix + property) > 0) continue;
        store.pending.assign(targetPrefix + property, entry.value);
    }
    store.instances.add(target);  // without defaults: the copied keys are all that it needs
    return XERR_SUCCESS;
}

XErr confDeleteInstance(ConfStore& store, const std::string& name) {
    const std::string prefix = confInstancePrefix(name);
    const std::lock_guard<std::mutex> guard(store.lock);
    for (const InstanceEntry& entry : entriesOfInstance(store, prefix)) {
        const std::string key = prefix + std::string(entry.property);
        store.removals.insert(key);
        store.pending.erase(key);
    }
    store.instances.remove(name);
    return XERR_SUCCESS;
}

std::vector<std::string> confKeysTooLongForDump(ConfStore& store) {
    std::vector<std::string> keys;
    const std::lock_guard<std::mutex> guard(store.lock);
    forEachDumpEntry(store, [&keys](const DumpEntry& entry) {
        if (!entry.fits()) keys.push_back(entry.stored.key());
    });
    return keys;
}

XErr confGetInstanceAllConfigs(ConfStore& store, char* buffer, std::uint32_t bufferSize,
                               std::uint32_t& outSize) {
    std::string dump;
    {
        const std::lock_guard<std::mutex> guard(store.lock);
        forEachDumpEntry(store, [&dump](const DumpEntry& entry) { appendDumpLine(dump, entry); });
    }
    dump.append("vtr.oem=nvo\n").append("vtr.version=").append(UTL_VERSION).append("\n");
    // A catalogue's worth of short lines: far below 32 bits.
    const auto needed = static_cast<std::uint32_t>(dump.size() + 1);
    if (bufferSize >= needed && buffer == nullptr) {
        XLOG_E(kLog, "%s: buffer is null", "confGetInstanceAllConfigs");
        return XERR_INVAL;
    }
    outSize = needed;
    if (bufferSize < needed) return XERR_FBIG;
    std::memcpy(buffer, dump.c_str(), needed);
    return XERR_SUCCESS;
}
