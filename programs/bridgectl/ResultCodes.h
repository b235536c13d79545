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

// The library's result codes in words.

struct ResultCode {
    XErr code;
    std::string name;                         // "XERR_NOENT"; empty for a Windows error
    std::string meaning;                      // "no such file or folder"
    std::vector<std::int32_t> windowsErrors;  // those that arrive as this code
};

// Every code that has a name, in ascending order.
std::vector<ResultCode> resultCodes();

// A code by its number or name ("2", "XERR_NOENT", "NOENT"), or a Windows error without a name
// (100000 and its number). Nothing for anything else.
std::optional<ResultCode> findResultCode(std::string_view text);

std::vector<TableRow> resultCodeRows();
JsonValue resultCodeJson(const ResultCode& code);

// The table of the document on result codes.
std::string resultCodesMarkdown();

#endif
