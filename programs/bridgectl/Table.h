#ifndef BRIDGECTL_TABLE_H
#define BRIDGECTL_TABLE_H

#include <string>
#include <vector>

using TableRow = std::vector<std::string>;

// Rows of equal length as lines of aligned columns, two blanks apart, without blanks at the ends.
std::string formatTable(const std::vector<TableRow>& rows);

#endif
