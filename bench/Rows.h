#ifndef BENCH_ROWS_H
#define BENCH_ROWS_H

#include "Bench.h"

// The rows to measure: all on Windows; elsewhere those that need no program and no DLL.
Rows allRows();

#endif
