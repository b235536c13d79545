#ifndef SHARED_TABLE_H
#define SHARED_TABLE_H

#include <string>
#include <vector>

#include "shared/TextStyle.h"

using TableRow = std::vector<std::string>;

// Rows of equal length as lines of aligned columns, two blanks apart, without blanks at the ends.
// The first row is the heading. Control characters become U+FFFD: they would break the lines, or
// reach the terminal.
std::string formatTable(const std::vector<TableRow>& rows, const TextStyle& style = {});

// A text with U+FFFD in place of its control characters.
std::string withoutControls(const std::string& text);

// The same as a table in Markdown.
std::string markdownTable(const std::vector<TableRow>& rows);

#endif
