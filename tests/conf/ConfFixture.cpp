#include "ConfFixture.h"

#include <sstream>

#include "CatalogueListing.h"

std::vector<ListedProperty> listedProperties() {
    std::vector<ListedProperty> rows;
    std::istringstream listing(kCatalogueListing);
    for (std::string line; std::getline(listing, line);) {
        if (line.empty() || line[0] == '#') continue;
        std::istringstream fields(line);
        ListedProperty row;
        std::string excluded;
        std::getline(fields, row.scope, '\t');
        std::getline(fields, row.name, '\t');
        std::getline(fields, row.type, '\t');
        std::getline(fields, row.defaultValue, '\t');
        std::getline(fields, excluded, '\t');
        row.excluded = excluded == "yes";
        rows.push_back(row);
    }
    return rows;
}

Entries globalDefaults() {
    Entries entries;
    for (const ListedProperty& row : listedProperties()) {
        if (row.scope == "global") entries["vtr." + row.name] = row.defaultValue;
    }
    return entries;
}

void addInstanceDefaults(Entries& entries, const std::string& instance) {
    for (const ListedProperty& row : listedProperties()) {
        if (row.scope != "instance") continue;
        entries.emplace("vtr.instance." + instance + "." + row.name, row.defaultValue);
    }
}

std::string fileText(const Entries& entries) {
    std::string text;
    for (const auto& [key, value] : entries) text += key + "=\"" + value + "\"\n";
    return text;
}

XErr ConfTest::init(std::string_view content) {
    folder.write("vantrel.conf", content);
    return confLibInit(store, path(), /*allowDeprecated=*/false);
}

XErr ConfTest::initWithoutFile() { return confLibInit(store, "", /*allowDeprecated=*/false); }

std::optional<std::string> ConfTest::committed(const std::string& key) {
    const std::lock_guard<std::mutex> guard(store.lock);
    const std::string* value = store.values.find(key);
    return value == nullptr ? std::nullopt : std::optional(*value);
}

std::size_t ConfTest::committedCount() {
    const std::lock_guard<std::mutex> guard(store.lock);
    return store.values.size();
}
