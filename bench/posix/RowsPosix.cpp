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

void benchFootprint() {}  // that of the DLL, of which there is none here
