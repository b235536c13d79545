#ifndef BENCH_PROFILESIDE_H
#define BENCH_PROFILESIDE_H

#include <optional>
#include <string>

#include "Bench.h"

// Loading by Windows' own functions for INI files, where there are such: a file of "[General]" and
// these lines, and the name of one of its keys.
std::optional<Side> profileSide(const std::string& path, const std::string& key);

#endif
