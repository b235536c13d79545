#ifndef BENCH_ROWS_H
#define BENCH_ROWS_H

#include "Bench.h"

// What is measured here: everything on Windows; what needs no program and no DLL anywhere.
Rows allRows();

#endif
