#ifndef BRIDGECTL_LISTINGROWS_H
#define BRIDGECTL_LISTINGROWS_H

#include <vector>

#include "shared/Table.h"

// The library's JSON listings as tables with a row of headings. Throws if the text is not such a
// listing.

std::vector<TableRow> instanceRows(const char* json);
std::vector<TableRow> appRows(const char* json);

#endif
