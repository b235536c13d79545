#ifndef BENCH_SAMPLECONF_H
#define BENCH_SAMPLECONF_H

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "conf/ConfStore.h"
#include "support/TempFolder.h"

// Sample configurations.

constexpr int kInstanceCounts[] = {10, 100, 1000, 10000};

using KeyValues = std::map<std::string, std::string, std::less<>>;

// Every property of the catalogue and of this number of instances, with values of typical lengths.
KeyValues sampleValues(int instances);

// The product's format: one `key="value"` per line, sorted.
std::string sampleText(const KeyValues& values);

std::string instanceName(int number);

// This number of keys in a random order that is the same at each call: of properties with this
// type, or of all instance properties with ConfType::None.
std::vector<std::string> someKeys(const KeyValues& values, ConfType type, std::size_t count);

// A loaded store with its own file.
struct SampleStore {
    explicit SampleStore(int instances);

    KeyValues values;
    TempFolder folder;
    std::string path;
    ConfCatalogue catalogue = confProductCatalogue();
    ConfStore store{catalogue, confDiskFiles()};
};

#endif
