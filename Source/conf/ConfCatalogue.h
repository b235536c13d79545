#ifndef CONF_CONFCATALOGUE_H
#define CONF_CONFCATALOGUE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// Value types of properties. The product's other programs use the same numbers.
enum class ConfType : std::uint32_t {
    None = 0,         // unknown property; for the core setter: do not check
    I32 = 1,          // decimal
    I64 = 2,          // decimal
    MultiString = 3,  // elements joined by ","
    Bool = 4,         // "0" or "1"
    String = 5,       // any text
};

struct ConfProperty {
    ConfType type = ConfType::None;
    std::string defaultValue;            // in the form of the file; may be empty
    bool excludeFromAllConfigs = false;  // left out of the dump of an instance
    bool deprecated = false;  // accepted from the file, dropped from it at the next commit
};

// Properties by name (without prefix), in byte order.
class ConfSchema {
 public:
    using Entry = std::pair<std::string, ConfProperty>;
    using const_iterator = std::vector<Entry>::const_iterator;

    // Replaces the property of that name. Invalidates iterators and indices.
    void put(const std::string& name, ConfProperty property);

    const_iterator begin() const { return entries_.begin(); }
    const_iterator end() const { return entries_.end(); }
    std::size_t size() const { return entries_.size(); }
    const Entry& operator[](std::size_t index) const { return entries_[index]; }

    // `hint`: likely index; any value is correct, a wrong one is slower. With the index after the
    // last one found as hint, a reload takes 0.6 of the time.
    const_iterator find(std::string_view name, std::size_t hint = 0) const;

    // Number of properties whose names come before this one.
    std::size_t countBefore(std::string_view name) const;

 private:
    std::vector<Entry> entries_;
};

// The declared properties: global ones ("vtr.<name>") and those that every instance has
// ("vtr.instance.<instance>.<name>"). Built once, then only read, from any thread.
class ConfCatalogue {
 public:
    // A second registration of a name replaces the first.
    void registerGlobal(const std::string& name, ConfProperty property);
    void registerInstance(const std::string& name, ConfProperty property);

    const ConfSchema& globals() const { return globals_; }
    const ConfSchema& instances() const { return instances_; }

    // Null when there is no such property.
    const ConfProperty* findGlobal(std::string_view name) const;
    const ConfProperty* findInstance(std::string_view name) const;

 private:
    ConfSchema globals_;
    ConfSchema instances_;
};

// Type of a property by its bare name. With the flag, searches the instance properties first, then
// the global ones; without it, only the global ones. ConfType::None when not found.
ConfType confGetPropType(const ConfCatalogue& catalogue, std::string_view name,
                         bool isInstanceProp);

// The product's catalogue, as a table.
struct ConfCatalogueRow {
    const char* name;
    ConfType type;
    const char* defaultValue;
    bool excludeFromAllConfigs;
};

struct ConfCatalogueRows {
    const ConfCatalogueRow* first;
    std::size_t count;
    const ConfCatalogueRow* begin() const { return first; }
    const ConfCatalogueRow* end() const { return first + count; }
};

ConfCatalogueRows confGlobalRows();
ConfCatalogueRows confInstanceRows();

// Registers every row of the table.
ConfCatalogue confProductCatalogue();

#endif
