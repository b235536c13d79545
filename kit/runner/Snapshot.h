#ifndef KIT_SNAPSHOT_H
#define KIT_SNAPSHOT_H

#include <map>
#include <string>
#include <vector>

// The state of what a run could change: one entry for each registry value and file, with what it
// holds.
using Snapshot = std::map<std::string, std::string>;

// What differs, a line each: "+ name", "- name" or "* name" for one that is new, gone or changed.
std::vector<std::string> differences(const Snapshot& before, const Snapshot& after);

#endif
