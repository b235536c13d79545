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
#include "conf/ConfStore.h"
#include "utl/UtlImages.h"
#include "xpl/Xattributes.h"
#include "xpl/Xbytes.h"
#include "xpl/Xerr.h"
#include "xpl/XsharedMutex.h"

namespace {

// A committed setting of an instance; valid until the view changes.
struct InstanceEntry {
    std::string_view property;
    const std::string& value;
};

// The part of the key (prefix + name) after `start`; none when the key does not begin with `start`.
// The prefix may end inside `start`: the keys of "A.B" are keys of "A" that begin with "B.".
std::optional<std::string_view> rest(std::string_view prefix, std::string_view name,
                                     std::string_view start) {
    if (start.substr(0, prefix.size()) != prefix) return std::nullopt;
    const std::string_view left = start.substr(prefix.size());
    if (name.substr(0, left.size()) != left) return std::nullopt;
    return name.substr(left.size());
}

// The entries whose keys begin with `start`, in key order.
std::vector<InstanceEntry> entriesOfInstance(const ConfView& view, std::string_view start) {
    std::vector<InstanceEntry> entries;
    view.forEach([&](std::string_view prefix, std::string_view name, const ConfValue& value) {
        if (!value.isCommitted) return;
        const auto property = rest(prefix, name, start);
        if (property) entries.push_back({*property, value.committed});
    });
    return entries;
}

// Buffer sizes of the dump's readers for a key and a value, in bytes, without the NUL.
constexpr std::size_t kDumpKeyMax = 31;
constexpr std::size_t kDumpValueMax = 91;

// A line of the dump.
struct DumpEntry {
    std::string_view prefix;
    std::string_view property;
    const std::string& value;

    std::string storedKey() const { return std::string(prefix).append(property); }
    std::string shownKey() const { return confGlobalKey(property); }
    bool fits() const { return shownKey().size() <= kDumpKeyMax && value.size() <= kDumpValueMax; }
};

// Calls visit(entry) for each line, in the order of the stored keys.
template <typename Visit>
void forEachDumpEntry(const ConfView& view, std::string_view currentPrefix, Visit visit) {
    const ConfCatalogue& catalogue = view.catalogue();
    view.forEach([&](std::string_view prefix, std::string_view name, const ConfValue& value) {
        const bool isGlobal = prefix == CONF_PREFIX;
        if (!value.isCommitted || (!isGlobal && prefix != currentPrefix)) return;
        const ConfProperty* const declared =
            isGlobal ? catalogue.findGlobal(name) : catalogue.findInstance(name);
        if (!declared->excludeFromAllConfigs) visit(DumpEntry{prefix, name, value.committed});
    });
}

// The lines of a dump, up to the first entry that is too long.
struct Dump {
    std::string lines;
    std::string tooLongKey;  // the stored key; empty: none is too long
    std::string tooLongValue;
};

Dump dumpOf(const ConfView& view, std::string_view currentPrefix) {
    Dump dump;
    forEachDumpEntry(view, currentPrefix, [&dump](const DumpEntry& entry) {
        if (!dump.tooLongKey.empty()) return;
        if (!entry.fits()) {
            dump.tooLongKey = entry.storedKey();
            dump.tooLongValue = entry.value;
            return;
        }
        dump.lines.append(entry.shownKey()).append("=").append(entry.value).append("\n");
    });
    return dump;
}

void stageCopy(ConfView& view, const ConfView::Names& deprecated, const std::string& source,
               const std::string& target) {
    for (const InstanceEntry& entry : entriesOfInstance(view, source)) {
        const std::string property(entry.property);
        if (deprecated.count(source + property) > 0) continue;
        const std::string key = target + property;
        view.stage(view.value(confFindKey(view.catalogue(), key)), entry.value);
    }
}

// Instances are forgotten only under the store's lock, so the result holds while the caller has it.
bool isKnown(ConfStore& store, const std::string& instance) XTS_REQUIRES(store.lock) {
    const XsharedGuard reading(store.viewLock);
    return store.view.isKnown(instance);
}

void stageRemoval(ConfView& view, const std::string& prefix) {
    for (const InstanceEntry& entry : entriesOfInstance(view, prefix)) {
        const std::string key = prefix + std::string(entry.property);
        view.remove(view.value(confFindKey(view.catalogue(), key)));
    }
}

}  // namespace

bool confIsInstanceName(std::string_view name) {
    constexpr std::string_view kEndsAKey{".=\n\0", 4};
    return name.find_first_of(kEndsAKey) == std::string_view::npos;
}

XErr confCopyInstance(ConfStore& store, const std::string& source, const std::string& target) {
    const std::lock_guard<std::mutex> guard(store.lock);
    if (!isKnown(store, source)) {
        XLOG_E(kConfLog, "Instance %s doesn't exist", source.c_str());
        return XERR_FAILURE;
    }
    if (!confIsInstanceName(target)) {
        // Once committed, its keys would make every later load fail, in every program.
        XLOG_E(kConfLog, "%s: invalid instance name %s", "confCopyInstance", target.c_str());
        return XERR_INVAL;
    }
    const std::lock_guard<XsharedMutex> changing(store.viewLock);
    stageCopy(store.view, store.deprecated, confInstancePrefix(source), confInstancePrefix(target));
    store.view.makeKnown(target);  // without defaults: it gets the copied keys only
    return XERR_SUCCESS;
}

XErr confDeleteInstance(ConfStore& store, const std::string& name) {
    const std::lock_guard<std::mutex> guard(store.lock);
    const std::lock_guard<XsharedMutex> changing(store.viewLock);
    stageRemoval(store.view, confInstancePrefix(name));
    store.view.forgetInstance(name);
    return XERR_SUCCESS;
}

std::vector<std::string> confKeysTooLongForDump(ConfStore& store) {
    std::vector<std::string> keys;
    const std::lock_guard<std::mutex> guard(store.lock);
    const XsharedGuard reading(store.viewLock);
    forEachDumpEntry(store.view, confCurrentInstanceKey(store, {}),
                     [&keys](const DumpEntry& entry) {
                         if (!entry.fits()) keys.push_back(entry.storedKey());
                     });
    return keys;
}

XErr confGetInstanceAllConfigs(ConfStore& store, char* buffer, std::uint32_t bufferSize,
                               std::uint32_t& outSize) {
    Dump entries;
    {
        const std::lock_guard<std::mutex> guard(store.lock);
        const XsharedGuard reading(store.viewLock);
        entries = dumpOf(store.view, confCurrentInstanceKey(store, {}));
    }
    if (!entries.tooLongKey.empty()) {
        XLOG_E(kConfLog, "Invalid conf entry. Key = '%s', value = '%s'", entries.tooLongKey.c_str(),
               entries.tooLongValue.c_str());
        XLOG_FATAL(kConfLog);
    }
    std::string& dump = entries.lines;
    dump.append("vtr.oem=nvo\n").append("vtr.version=").append(UTL_VERSION).append("\n");
    // At most one short line per property: fits easily.
    const auto needed = static_cast<std::uint32_t>(dump.size() + 1);
    if (bufferSize >= needed && buffer == nullptr) {
        XLOG_E(kConfLog, "%s: buffer is null", "confGetInstanceAllConfigs");
        return XERR_INVAL;
    }
    outSize = needed;
    if (bufferSize < needed) return XERR_FBIG;
    std::memcpy(buffer, dump.c_str(), needed);
    return XERR_SUCCESS;
}
