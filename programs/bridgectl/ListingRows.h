#ifndef BRIDGECTL_LISTINGROWS_H
#define BRIDGECTL_LISTINGROWS_H

#include <vector>

#include "shared/Table.h"

// The library's listings, which are JSON, as tables with a row of headings. Text that is no such
// listing is thrown as an exception.

std::vector<TableRow> instanceRows(const char* json);
std::vector<TableRow> appRows(const char* json);

#endif
