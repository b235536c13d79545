#ifndef KIT_RECORD_H
#define KIT_RECORD_H

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Outcome.h"
#include "Table.h"
#include "TestOutput.h"

// The result of one check.
struct Record {
    Check check;
    Outcome outcome = Outcome::Failed;
    std::string reason;
    std::uint32_t error = 0;  // the Windows error of a failed start, else the process's status
    long milliseconds = 0;
    std::string raw;  // log of its output, relative to the results; empty if it was not run
    TestOutput output;
};

using Facts = std::vector<std::pair<std::string, std::string>>;

// "0x80000003".
std::string hexadecimal(std::uint32_t number);

// A check as lines of JSON: one for the check, and one for each of its tests.
std::string recordLines(const Record& record);

// The facts as one JSON object.
std::string factsText(const Facts& facts);

// Escapes a text for HTML.
std::string htmlText(std::string_view text);

// A static page with all results and facts.
std::string summaryPage(const std::vector<Record>& records, const Facts& facts);

#endif
