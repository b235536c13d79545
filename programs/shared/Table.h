#ifndef SHARED_TABLE_H
#define SHARED_TABLE_H

#include <string>
#include <vector>

#include "shared/TextStyle.h"

using TableRow = std::vector<std::string>;

// Rows of equal length as lines of aligned columns, separated by two spaces, without trailing
// spaces. The first row is the heading. Control characters become U+FFFD: they would break lines or
// control the terminal.
std::string formatTable(const std::vector<TableRow>& rows, const TextStyle& style = {});

// The text with U+FFFD instead of control characters.
std::string withoutControls(const std::string& text);

// The same as a Markdown table.
std::string markdownTable(const std::vector<TableRow>& rows);

#endif
