#include "Table.h"

#include <algorithm>

#include "DisplayWidth.h"

namespace {

std::vector<std::size_t> columnWidths(const std::vector<TableRow>& rows) {
    std::vector<std::size_t> widths;
    for (const TableRow& row : rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (std::size_t i = 0; i < row.size(); ++i) {
            widths[i] = std::max(widths[i], displayWidth(row[i]));
        }
    }
    return widths;
}

std::string formatRow(const TableRow& row, const std::vector<std::size_t>& widths) {
    std::string line;
    for (std::size_t i = 0; i < row.size(); ++i) {
        line.append(row[i]).append(widths[i] - displayWidth(row[i]) + 2, ' ');
    }
    return line.erase(line.find_last_not_of(' ') + 1) + "\n";
}

}  // namespace

std::string formatTable(const std::vector<TableRow>& rows) {
    const std::vector<std::size_t> widths = columnWidths(rows);
    std::string text;
    for (const TableRow& row : rows) text += formatRow(row, widths);
    return text;
}
