// Names of status codes, and the translation of Windows errors.
#include "xpl/Xerr.h"

namespace {

struct CodeName {
    XErr code;
    const char* name;
};

constexpr CodeName kNames[] = {
#define XERR_ROW(code, name) {code, "XERR_" #name},
    XERR_CODES(XERR_ROW)
#undef XERR_ROW
};

struct WindowsRow {
    std::int32_t windowsError;
    XErr code;
};

constexpr WindowsRow kWindowsRows[] = {
#define XERR_ROW(windowsError, windowsName, name) {windowsError, XERR_##name},
    XERR_WINDOWS_ERRORS(XERR_ROW)
#undef XERR_ROW
};

}  // namespace

XErr xerrFromWindows(std::int32_t windowsError) noexcept {
    for (const WindowsRow& row : kWindowsRows) {
        if (row.windowsError == windowsError) return row.code;
    }
    // Unsigned arithmetic: the largest Windows errors would overflow a signed number.
    return static_cast<XErr>(static_cast<std::uint32_t>(windowsError) +
                             static_cast<std::uint32_t>(XERR_WINDOWS_BASE));
}

std::string xerrName(XErr code) {
    for (const CodeName& row : kNames) {
        if (row.code == code) return row.name;
    }
    return "NOTDEFINED: " + std::to_string(code);
}

std::vector<XErr> xerrCodes() {
    std::vector<XErr> codes;
    for (const CodeName& row : kNames) codes.push_back(row.code);
    return codes;
}

std::vector<std::int32_t> xerrWindowsErrors(XErr code) {
    std::vector<std::int32_t> errors;
    for (const WindowsRow& row : kWindowsRows) {
        if (row.code == code) errors.push_back(row.windowsError);
    }
    return errors;
}
