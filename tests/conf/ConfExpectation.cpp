#include "ConfExpectation.h"

#include <set>
#include <sstream>

#include "CatalogueListing.h"
#include "support/ProductVersion.h"

const std::string kDumpEnd = std::string("vtr.oem=nvo\nvtr.version=") + kProductVersion + "\n";

std::vector<ListedProperty> listedProperties() {
    std::vector<ListedProperty> rows;
    std::istringstream listing(kCatalogueListing);
    for (std::string line; std::getline(listing, line);) {
        if (line.empty() || line[0] == '#') continue;
        std::istringstream fields(line);
        ListedProperty row;
        std::string excluded;
        for (std::string* field :
             {&row.scope, &row.name, &row.type, &row.defaultValue, &excluded}) {
            std::getline(fields, *field, '\t');
        }
        row.excluded = excluded == "yes";
        rows.push_back(row);
    }
    return rows;
}

std::size_t globalCount() { return globalDefaults().size(); }

std::size_t instanceCount() {
    Entries entries;
    addInstanceDefaults(entries, "any");
    return entries.size();
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

void addInstanceCopy(Entries& entries, const std::string& source, const std::string& target) {
    const std::string prefix = "vtr.instance." + source + ".";
    Entries copies;
    for (const auto& [key, value] : entries) {
        if (key.rfind(prefix, 0) != 0) continue;
        copies["vtr.instance." + target + "." + key.substr(prefix.size())] = value;
    }
    entries.insert(copies.begin(), copies.end());
}

std::string dumpText(const Entries& entries, const std::string& instance) {
    std::set<std::string> excluded;
    for (const ListedProperty& row : listedProperties()) {
        if (row.excluded) excluded.insert(row.scope + row.name);
    }
    const std::string own = "vtr.instance." + instance + ".";
    std::string text;
    for (const auto& [key, value] : entries) {
        const bool isOwn = !instance.empty() && key.rfind(own, 0) == 0;
        if (!isOwn && key.rfind("vtr.instance.", 0) == 0) continue;
        const std::string property = key.substr(isOwn ? own.size() : 4);
        if (excluded.count((isOwn ? "instance" : "global") + property) > 0) continue;
        text += "vtr." + property + "=" + value + "\n";
    }
    return text + kDumpEnd;
}
