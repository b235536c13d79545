#ifndef TESTS_CONFEXPECTATION_H
#define TESTS_CONFEXPECTATION_H

#include <cstddef>
#include <map>
#include <string>
#include <vector>

// What files and dumps must hold, from a listing of the catalogue that is kept with the tests.

// One row of the listing.
struct ListedProperty {
    std::string scope;
    std::string name;
    std::string type;
    std::string defaultValue;
    bool excluded;
};
std::vector<ListedProperty> listedProperties();

// Number of properties, global ones and those of each instance. A name with two rows counts once.
std::size_t globalCount();
std::size_t instanceCount();

// Expected entries of a file: full key to value.
using Entries = std::map<std::string, std::string>;
Entries globalDefaults();
void addInstanceDefaults(Entries& entries, const std::string& instance);

// Gives the target every entry of the source that it lacks.
void addInstanceCopy(Entries& entries, const std::string& source, const std::string& target);

std::string fileText(const Entries& entries);

// The two last lines of every dump.
extern const std::string kDumpEnd;

// The dump of an instance; with an empty name that of no instance.
std::string dumpText(const Entries& entries, const std::string& instance);

#endif
