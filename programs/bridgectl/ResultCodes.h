#ifndef BRIDGECTL_RESULTCODES_H
#define BRIDGECTL_RESULTCODES_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "shared/JsonValue.h"
#include "shared/Table.h"
#include "xpl/Xerr.h"

// Explanations of the library's result codes.

struct ResultCode {
    XErr code;
    std::string name;                         // "XERR_NOENT"; empty for a Windows error
    std::string meaning;                      // "no such file or folder"
    std::vector<std::int32_t> windowsErrors;  // those that arrive as this code
};

// All codes with a name, in ascending order.
std::vector<ResultCode> resultCodes();

// Finds a code by number or name ("2", "XERR_NOENT", "NOENT"), or a Windows error without a name
// (100000 plus its number).
std::optional<ResultCode> findResultCode(std::string_view text);

std::vector<TableRow> resultCodeRows();
JsonValue resultCodeJson(const ResultCode& code);

// The table in docs/reference/codes.md.
std::string resultCodesMarkdown();

#endif
