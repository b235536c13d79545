#include "Rows.h"

Rows allRows() {
    Rows rows;
    addLoadRows(rows);
    addAccessRows(rows);
    addCommitRows(rows);
    addListingRows(rows);
    addLogRows(rows);
    return rows;
}

void benchFootprint() { benchFail("the footprint is the DLL's"); }
