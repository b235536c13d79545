#ifndef KIT_SNAPSHOT_H
#define KIT_SNAPSHOT_H

#include <map>
#include <string>
#include <vector>

// The content of registry values and the sizes of files, by name.
using Snapshot = std::map<std::string, std::string>;

// A line for each difference: "+ name" for a new entry, "- name" for a removed one, "* name" for a
// changed one.
std::vector<std::string> differences(const Snapshot& before, const Snapshot& after);

#endif
