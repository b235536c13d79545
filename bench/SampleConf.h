#ifndef BENCH_SAMPLECONF_H
#define BENCH_SAMPLECONF_H

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "conf/ConfStore.h"
#include "support/TempFolder.h"

// Configurations to measure with.

constexpr int kInstanceCounts[] = {10, 100, 1000, 10000};

using KeyValues = std::map<std::string, std::string, std::less<>>;

// Every property of the catalogue and of so many instances, with values of usual lengths.
KeyValues sampleValues(int instances);

// As the product keeps them: one `key="value"` a line, in order.
std::string sampleText(const KeyValues& values);

std::string instanceName(int number);

// So many keys, the same at each call, in no order. Of properties with that type; of any instance
// property with ConfType::None.
std::vector<std::string> someKeys(const KeyValues& values, ConfType type, std::size_t count);

// A store over a file of its own, loaded.
struct SampleStore {
    explicit SampleStore(int instances);

    KeyValues values;
    TempFolder folder;
    std::string path;
    ConfCatalogue catalogue = confProductCatalogue();
    ConfStore store{catalogue, confDiskFiles()};
};

#endif
