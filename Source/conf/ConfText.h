#ifndef CONF_CONFTEXT_H
#define CONF_CONFTEXT_H

#include <cstddef>
#include <string_view>

#include "xpl/Xerr.h"

// The text of a configuration file: lines `key="value"`, separated by "\n", without comments, blank
// lines, continuation or escapes. Pure functions over bytes.

// A line may have up to this many bytes when it is read, and has fewer, line feed included, when it
// is written.
constexpr std::size_t CONF_LINE_SIZE = 4096;

struct ConfEntry {
    std::string_view line;  // without its line feed
    std::string_view key;   // before the first "="
    // What stands between the two characters after the first "=" and the line's last character,
    // whatever these are: a file with CR line ends keeps its closing quotes. Ends at a NUL.
    std::string_view value;
    bool hasNul;  // anywhere in the line
};

enum class ConfRead { Entry, Malformed, End };

// Reads entry after entry. Views point into the content.
class ConfTextReader {
 public:
    explicit ConfTextReader(std::string_view content) : rest_(content) {}

    // Malformed (too long, empty, without "=") sets the line only. Throws std::out_of_range for a
    // line that ends at its first "=".
    ConfRead next(ConfEntry& entry);

 private:
    std::string_view rest_;
};

// Result of laying out a line: the length of the line that would be written, or what the bounded
// formatter of the product answers for a line that fills its buffer (4096) or exceeds it (-1).
int confLineLength(std::string_view key, std::string_view value);

// Whether an entry would read back as it is written: 7 (XERR_2BIG) for a line of 4096 bytes or
// more, 22 (XERR_INVAL) for a line feed in it or a "=" or NUL in the key.
XErr confCheckEntry(std::string_view key, std::string_view value);

// The same for an entry without a NUL that was read: only its length can be wrong.
XErr confCheckReadEntry(std::string_view key, std::string_view value);

// Writes what follows the key in the line of an entry that passed the check, to where there is room
// for it, and returns the place after it. A value ends at its first NUL.
char* confEndLine(char* afterKey, std::string_view value);

#endif
