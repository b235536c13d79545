#ifndef CONF_CONFINSTANCEVALUES_H
#define CONF_CONFINSTANCEVALUES_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "conf/ConfCatalogue.h"
#include "conf/ConfStore.h"

// A property of instances, by its bare name.
struct ConfColumn {
    std::string_view property;
    ConfType type;
};

// A consistent snapshot of some properties of all known instances, ordered by instance name.
class ConfInstanceValues {
 public:
    ConfInstanceValues(ConfStore& store, const ConfColumn* columns, std::size_t count);

    std::size_t size() const { return cells_.size() / width_; }
    std::string_view name(std::size_t instance) const { return *text(cells_[instance * width_]); }

    // No value when reading that key would be fatal.
    std::optional<std::string_view> value(std::size_t instance, std::size_t column) const {
        return text(cells_[instance * width_ + 1 + column]);
    }

 private:
    // A range of the texts.
    struct Cell {
        bool exists;
        std::size_t start;
        std::size_t length;
    };

    void add(const std::string* text);
    std::optional<std::string_view> text(const Cell& cell) const;

    std::size_t width_;  // an instance's name and its values
    std::vector<Cell> cells_;
    std::string texts_;
};

#endif
