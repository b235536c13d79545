#ifndef BENCH_PROFILESIDE_H
#define BENCH_PROFILESIDE_H

#include <optional>
#include <string>

#include "Bench.h"

// Loads a file of "[General]" and these lines with Windows' functions for INI files, where they
// exist, and reads one of its keys.
std::optional<Side> profileSide(const std::string& path, const std::string& key);

#endif
