#ifndef BRIDGECTL_CATALOGUEROWS_H
#define BRIDGECTL_CATALOGUEROWS_H

#include <string>
#include <vector>

#include "shared/JsonValue.h"
#include "shared/Table.h"

// The keys of the library's catalogue: global keys, then keys of an instance, both in byte order.

// One row per key, after a row of headings.
std::vector<TableRow> catalogueRows();

// Objects with "key", "scope", "type" and "default".
JsonValue catalogueJson();

// The table in docs/reference/configuration-keys.md.
std::string catalogueMarkdown();

#endif
