#include "shared/Table.h"

#include <algorithm>
#include <cstddef>

#include "shared/DisplayWidth.h"
#include "shared/TextStyle.h"

namespace {

std::vector<TableRow> safeRows(std::vector<TableRow> rows) {
    for (TableRow& row : rows) {
        for (std::string& cell : row) cell = withoutControls(cell);
    }
    return rows;
}

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
    return line.erase(line.find_last_not_of(' ') + 1);
}

std::string markdownRow(const TableRow& row) {
    std::string line = "|";
    for (const std::string& cell : row) line += cell.empty() ? " |" : " " + cell + " |";
    return line + "\n";
}

}  // namespace

// C0 controls, DEL, and U+0080 to U+009F, which have two bytes.
std::string withoutControls(const std::string& text) {
    std::string safe;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        const auto next = static_cast<unsigned char>(i + 1 < text.size() ? text[i + 1] : 0);
        const bool isC1 = byte == 0xC2 && next >= 0x80 && next < 0xA0;
        if (byte >= 0x20 && byte != 0x7F && !isC1) {
            safe += text[i];
            continue;
        }
        safe += "\xEF\xBF\xBD";
        if (isC1) ++i;
    }
    return safe;
}

std::string formatTable(const std::vector<TableRow>& rows, const TextStyle& style) {
    const std::vector<TableRow> shown = safeRows(rows);
    const std::vector<std::size_t> widths = columnWidths(shown);
    std::string text;
    for (const TableRow& row : shown) {
        const std::string line = formatRow(row, widths);
        text += (text.empty() ? style.heading(line) : line) + "\n";
    }
    return text;
}

std::string markdownTable(const std::vector<TableRow>& rows) {
    std::string text;
    for (const TableRow& row : rows) {
        text += markdownRow(row);
        if (&row != &rows.front()) continue;
        text += "|";
        for (std::size_t i = 0; i < row.size(); ++i) text += "---|";
        text += "\n";
    }
    return text;
}
