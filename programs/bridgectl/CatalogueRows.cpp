#include "CatalogueRows.h"

#include <cstddef>

#include "Configuration.h"
#include "conf/ConfCatalogue.h"

namespace {

struct CatalogueKey {
    std::string key;
    const char* scope;
    const ConfProperty* property;
};

std::vector<CatalogueKey> keysOf(const ConfCatalogue& catalogue) {
    std::vector<CatalogueKey> keys;
    for (const auto& [name, property] : catalogue.globals()) {
        keys.push_back({"vtr." + name, "global", &property});
    }
    for (const auto& [name, property] : catalogue.instances()) {
        keys.push_back({"vtr.instance.<instance>." + name, "instance", &property});
    }
    return keys;
}

}  // namespace

std::vector<TableRow> catalogueRows() {
    const ConfCatalogue catalogue = confProductCatalogue();
    std::vector<TableRow> rows{{"KEY", "SCOPE", "TYPE", "DEFAULT"}};
    for (const CatalogueKey& key : keysOf(catalogue)) {
        rows.push_back(
            {key.key, key.scope, typeName(key.property->type), key.property->defaultValue});
    }
    return rows;
}

JsonValue catalogueJson() {
    const ConfCatalogue catalogue = confProductCatalogue();
    JsonArray array;
    for (const CatalogueKey& key : keysOf(catalogue)) {
        array.push_back(JsonObject{{"key", key.key},
                                   {"scope", key.scope},
                                   {"type", typeName(key.property->type)},
                                   {"default", key.property->defaultValue}});
    }
    return array;
}

std::string catalogueMarkdown() {
    std::vector<TableRow> rows{{"key", "type", "default"}};
    const std::vector<TableRow> all = catalogueRows();
    for (std::size_t i = 1; i < all.size(); ++i) {
        const std::string& text = all[i][3];
        rows.push_back({"`" + all[i][0] + "`", all[i][2], text.empty() ? "" : "`" + text + "`"});
    }
    return markdownTable(rows);
}
