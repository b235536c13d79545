// bench [ROW...]             measures the rows with these name prefixes, or all rows
// bench --repeat ROW SIDE N   repeats the operation of one side N times, for a profiler
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "Rows.h"
#include "support/TempFolder.h"
#include "xpl/Xlog.h"

namespace {

bool isWanted(const std::string& name, int count, char** prefixes) {
    for (int i = 1; i < count; ++i) {
        if (name.rfind(prefixes[i], 0) == 0) return true;
    }
    return count == 1;
}

int repeat(const Rows& rows, const std::string& name, const std::string& side, std::int64_t times) {
    for (const Row& row : rows) {
        if (row.name == name) benchRepeat(row, side, times);
    }
    return 0;
}

}  // namespace

int main(int count, char** arguments) {
    const TempFolder folder;
    if (xlogLibInit(nullptr, folder / "library.log") != XERR_SUCCESS) return 1;
    xlogSetClientName("Helper_bridge");
    const Rows rows = allRows();
    if (count == 5 && std::strcmp(arguments[1], "--repeat") == 0) {
        return repeat(rows, arguments[2], arguments[3], std::atoll(arguments[4]));
    }
    bool any = false;
    for (const Row& row : rows) {
        if (!isWanted(row.name, count, arguments)) continue;
        any = true;
        std::fprintf(stderr, "  %s\n", row.name.c_str());
        benchMeasure(row);
    }
    if (isWanted("footprint", count, arguments)) {
        any = true;
        benchFootprint();
    }
    if (any) return 0;
    std::fprintf(stderr, "no such row; there are:\n");
    for (const Row& row : rows) {
        std::fprintf(stderr, "  %-28s %s\n", row.name.c_str(), row.work.c_str());
    }
    return 2;
}
