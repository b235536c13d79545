#ifndef BRIDGECTL_CATALOGUEROWS_H
#define BRIDGECTL_CATALOGUEROWS_H

#include <string>
#include <vector>

#include "shared/JsonValue.h"
#include "shared/Table.h"

// The keys that the library's catalogue has: global ones, then those of an instance, each in byte
// order.

// One row a key, below a row of headings.
std::vector<TableRow> catalogueRows();

// Objects with "key", "scope", "type" and "default".
JsonValue catalogueJson();

// The table of the document on configuration keys.
std::string catalogueMarkdown();

#endif
