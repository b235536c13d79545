#include "Rows.h"

Rows allRows() {
    Rows rows;
    addLoadRows(rows);
    addAccessRows(rows);
    addCommitRows(rows);
    addListingRows(rows);
    addLogRows(rows);
    addThreadRows(rows);
    return rows;
}

void benchFootprint() {}  // there is no DLL to measure
