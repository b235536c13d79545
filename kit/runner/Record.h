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

// What is known of one check afterwards.
struct Record {
    Check check;
    Outcome outcome = Outcome::Failed;
    std::string reason;
    std::uint32_t error = 0;  // the Windows error of a failed start, else the process's status
    long milliseconds = 0;
    std::string raw;  // the log with its output, relative to the results; empty for none
    TestOutput output;
};

using Facts = std::vector<std::pair<std::string, std::string>>;

// "0x80000003".
std::string hexadecimal(std::uint32_t number);

// The lines of a check, in JSON: one for itself, and one for each of its tests.
std::string recordLines(const Record& record);

// The facts as one JSON object.
std::string factsText(const Facts& facts);

// A text in HTML, where nothing of it is markup.
std::string htmlText(std::string_view text);

// One static page about everything.
std::string summaryPage(const std::vector<Record>& records, const Facts& facts);

#endif
