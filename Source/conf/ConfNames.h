#ifndef CONF_CONFNAMES_H
#define CONF_CONFNAMES_H

#include <functional>
#include <set>
#include <string>
#include <string_view>

#include "conf/ConfNameIndex.h"

// A set of names, in byte order, that is quickly asked for one of them.
class ConfNames {
 public:
    using Set = std::set<std::string, std::less<>>;

    ConfNames() = default;
    ConfNames(const ConfNames&) = delete;
    ConfNames& operator=(const ConfNames&) = delete;

    bool contains(std::string_view name) const noexcept { return index_.find(name) != nullptr; }

    // The name as it is kept, until it is removed.
    std::string_view add(std::string_view name) {
        if (const std::string* const known = index_.find(name)) return *known;
        index_.reserveOne();
        const auto added = names_.emplace_hint(names_.end(), name);  // a file has them in order
        index_.add(*added, *added);
        return *added;
    }

    void remove(std::string_view name) {
        index_.remove(name);
        const auto found = names_.find(name);
        if (found != names_.end()) names_.erase(found);
    }

    void clear() noexcept {
        index_.clear();
        names_.clear();
    }

    const Set& all() const noexcept { return names_; }

 private:
    Set names_;
    ConfNameIndex<const std::string> index_;
};

#endif
