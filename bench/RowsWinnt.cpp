#include "Rows.h"

Rows allRows() {
    Rows rows;
    addLoadRows(rows);
    addAccessRows(rows);
    addCommitRows(rows);
    addListingRows(rows);
    addLogRows(rows);
    addRequestRows(rows);
    addEventRows(rows);
    addStartRows(rows);
    addThreadRows(rows);
    return rows;
}
