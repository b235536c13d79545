// bench [ROW...]: measures the rows whose names begin with one of these, or all.
#include <cstdio>

#include "Bench.h"
#include "support/TempFolder.h"
#include "xpl/Xlog.h"

namespace {

bool isWanted(const std::string& name, int count, char** prefixes) {
    for (int i = 1; i < count; ++i) {
        if (name.rfind(prefixes[i], 0) == 0) return true;
    }
    return count == 1;
}

}  // namespace

int main(int count, char** arguments) {
    const TempFolder folder;
    if (xlogLibInit(nullptr, folder / "library.log") != XERR_SUCCESS) return 1;
    xlogSetClientName("Helper_bridge");
    Rows rows;
    addLoadRows(rows);
    addAccessRows(rows);
    addCommitRows(rows);
    addListingRows(rows);
    addLogRows(rows);
    addRequestRows(rows);
    addEventRows(rows);
    addStartRows(rows);
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
