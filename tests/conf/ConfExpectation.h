#ifndef TESTS_CONFEXPECTATION_H
#define TESTS_CONFEXPECTATION_H

#include <cstddef>
#include <map>
#include <string>
#include <vector>

// The expected content of files and dumps, from the tests' own listing of the catalogue.

// One row of the listing.
struct ListedProperty {
    std::string scope;
    std::string name;
    std::string type;
    std::string defaultValue;
    bool excluded;
};
std::vector<ListedProperty> listedProperties();

// The number of properties, global and of an instance. A name with two rows counts once.
std::size_t globalCount();
std::size_t instanceCount();

// Expected entries of a file: full key to value.
using Entries = std::map<std::string, std::string>;
Entries globalDefaults();
void addInstanceDefaults(Entries& entries, const std::string& instance);

// Copies the source's entries that the target lacks.
void addInstanceCopy(Entries& entries, const std::string& source, const std::string& target);

std::string fileText(const Entries& entries);

// The last two lines of every dump.
extern const std::string kDumpEnd;

// The dump of an instance. An empty name means no instance.
std::string dumpText(const Entries& entries, const std::string& instance);

#endif
