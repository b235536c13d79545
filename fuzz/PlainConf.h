#ifndef FUZZ_PLAINCONF_H
#define FUZZ_PLAINCONF_H

#include <string>
#include <string_view>
#include <vector>

#include "xpl/Xerr.h"

// A second, simple implementation of the configuration's text. The fuzzers compare the library with
// it.

struct PlainEntry {
    std::string line;
    std::string key;
    std::string value;
};

struct PlainText {
    enum End { Whole, Malformed, Throws };

    std::vector<PlainEntry> entries;  // before the end
    End end = Whole;
    std::string badLine;  // that ended it
};

PlainText plainText(std::string_view content);

// The line of an entry, with its line feed.
std::string plainLine(const std::string& key, const std::string& value);

// Whether an entry may be written.
XErr plainCheckEntry(const std::string& key, const std::string& value);

#endif
