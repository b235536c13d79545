/**
 * @file configuration_file.hpp
 * @brief The content of vantrel.conf, for the checks in conf_check.hpp. Not for hosts.
 */
#ifndef BRIDGE_CONFIGURATION_FILE_HPP
#define BRIDGE_CONFIGURATION_FILE_HPP

#include <algorithm>
#include <bridge/key.hpp>
#include <bridge/keys.hpp>
#include <bridge/process.hpp>
#include <cstddef>
#include <functional>
#include <iterator>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>

namespace bridge::detail {

using Names = std::set<std::string, std::less<>>;

/** The parts of a key, which point into it. */
struct KeyParts {
    bool ofInstance = false;
    std::string_view instance;
    std::string_view property;
};

/** Empty for a text that is not a key. */
inline std::optional<KeyParts> partsOf(std::string_view key) {
    constexpr std::string_view kGlobal = "vtr.";
    constexpr std::string_view kInstance = "vtr.instance.";
    if (key.substr(0, kInstance.size()) == kInstance) {
        const std::string_view rest = key.substr(kInstance.size());
        const std::size_t dot = rest.find('.');
        if (dot == std::string_view::npos) return KeyParts{true, rest, {}};
        return KeyParts{true, rest.substr(0, dot), rest.substr(dot + 1)};
    }
    if (key.substr(0, kGlobal.size()) != kGlobal) return std::nullopt;
    return KeyParts{false, {}, key.substr(kGlobal.size())};
}

/** Null when there is no such property. */
inline const Property* findProperty(const KeyParts& key) {
    const auto isMeant = [&key](const Property& one) { return one.name == key.property; };
    if (key.ofInstance) {
        const auto* const end = std::end(kInstanceProperties);
        const auto* const found = std::find_if(std::begin(kInstanceProperties), end, isMeant);
        return found == end ? nullptr : found;
    }
    const auto* const end = std::end(kGlobalProperties);
    const auto* const found = std::find_if(std::begin(kGlobalProperties), end, isMeant);
    return found == end ? nullptr : found;
}

/** The values that a load takes from a file: all before the first malformed line, where the last
 * line of a key counts. The instances come from all lines. */
struct FileContent {
    std::map<std::string, std::string, std::less<>> values;
    Names instances;
};

/** The value of a line. The first and the last character after "=" are quotes. */
inline std::string_view valueOfLine(std::string_view line, std::size_t equals) {
    const std::size_t first = equals + 2;
    if (first >= line.size()) return {};
    const std::string_view value = line.substr(first, line.size() - 1 - first);
    return value.substr(0, value.find('\0'));
}

inline FileContent contentOf(std::string_view text) {
    constexpr std::size_t kLongestLine = 4096;
    FileContent content;
    bool isGood = true;
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(line.size() < text.size() ? line.size() + 1 : line.size());
        const std::size_t equals = line.find('=');
        const std::string_view key = line.substr(0, equals);
        const auto parts = equals == std::string_view::npos ? std::nullopt : partsOf(key);
        if (parts && parts->ofInstance && !parts->property.empty()) {
            content.instances.emplace(parts->instance);
        }
        isGood = isGood && line.size() <= kLongestLine && parts && findProperty(*parts) != nullptr;
        if (isGood) content.values[std::string(key)] = valueOfLine(line, equals);
    }
    return content;
}

/** The file at its last load, and the changes of this process since then. */
class Configuration {
 public:
    /** Call it before an initialisation, which resets the global keys to their defaults. The path
     * is empty when there is no file. */
    void startWith(const std::string& path) {
        {
            const std::lock_guard<std::mutex> guard(lock_);
            path_ = path;
            forgetGlobals(loaded_, [](const auto&) { return true; });
            forgetGlobals(set_, [](const auto& one) { return !one.second; });
        }
        load();
    }

    /** Reads the file. Keys that it does not have, and staged changes, keep their values. */
    void load() {
        FileContent content = read();
        const std::lock_guard<std::mutex> guard(lock_);
        instances_ = content.instances;
        loadedInstances_ = std::move(content.instances);
        for (auto& [key, value] : content.values) {
            const auto set = set_.find(key);
            if (set != set_.end() && !set->second) set_.erase(set);
            loaded_[key] = std::move(value);
        }
    }

    /** Call it after a commit that has applied its changes. They are no longer staged. */
    void committed() {
        const std::lock_guard<std::mutex> guard(lock_);
        for (auto& [key, isStaged] : set_) isStaged = false;
    }

    void wasSet(const std::string& key) {
        const std::lock_guard<std::mutex> guard(lock_);
        set_[key] = true;
    }

    /** Whether this process has set the key. Such a value can be parsed. */
    bool isSet(const std::string& key) const {
        const std::lock_guard<std::mutex> guard(lock_);
        return set_.count(key) > 0;
    }

    /** The value from the file. */
    std::optional<std::string> loadedValue(std::string_view key) const {
        const std::lock_guard<std::mutex> guard(lock_);
        const auto found = loaded_.find(key);
        if (found == loaded_.end()) return std::nullopt;
        return found->second;
    }

    void addInstance(const std::string& name) {
        const std::lock_guard<std::mutex> guard(lock_);
        added_.insert(name);
    }

    /** Reads the file again before it returns false. */
    bool knowsInstance(std::string_view name) {
        if (isNamed(name)) return true;
        Names instances = read().instances;
        const std::lock_guard<std::mutex> guard(lock_);
        instances_ = std::move(instances);
        return instances_.count(name) > 0;
    }

    /** The instances of the file and those that this process added. */
    Names knownInstances() const {
        const std::lock_guard<std::mutex> guard(lock_);
        Names all = instances_;
        all.insert(added_.begin(), added_.end());
        return all;
    }

    /** The instances of the file at its last load. */
    Names loadedInstances() const {
        const std::lock_guard<std::mutex> guard(lock_);
        return loadedInstances_;
    }

    /** Whether the library is known to have loaded the instance. */
    bool isReady(std::string_view name) const {
        const std::lock_guard<std::mutex> guard(lock_);
        return ready_.count(name) > 0;
    }
    void isReadyNow(std::string_view name) {
        const std::lock_guard<std::mutex> guard(lock_);
        ready_.emplace(name);
    }

    std::string path() const {
        const std::lock_guard<std::mutex> guard(lock_);
        return path_;
    }

 private:
    template <typename Map, typename Condition>
    static void forgetGlobals(Map& map, Condition condition) {
        for (auto one = map.begin(); one != map.end();) {
            const auto parts = partsOf(one->first);
            const bool isGlobal = parts && !parts->ofInstance;
            one = isGlobal && condition(*one) ? map.erase(one) : std::next(one);
        }
    }

    FileContent read() const {
        const std::string file = path();
        const std::optional<std::string> text = file.empty() ? std::nullopt : readFile(file);
        return text ? contentOf(*text) : FileContent();
    }

    bool isNamed(std::string_view name) const {
        const std::lock_guard<std::mutex> guard(lock_);
        return instances_.count(name) > 0 || added_.count(name) > 0;
    }

    mutable std::mutex lock_;
    std::string path_;
    std::map<std::string, std::string, std::less<>> loaded_;
    Names loadedInstances_;
    Names instances_;  // at the last read of the file
    Names added_;
    Names ready_;
    std::map<std::string, bool, std::less<>> set_;  // true while it is staged
};

inline Configuration& configuration() {
    static Configuration& state = *new Configuration;
    return state;
}

}  // namespace bridge::detail

#endif
