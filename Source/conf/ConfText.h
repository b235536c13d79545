#ifndef CONF_CONFTEXT_H
#define CONF_CONFTEXT_H

#include <cstddef>
#include <string_view>

#include "xpl/Xerr.h"

// The format of a configuration file: lines `key="value"`, separated by "\n". There are no
// comments, blank lines, continuations or escapes. Pure functions on bytes.

// Longest line that is read, in bytes. A written line, with its line feed, is shorter.
constexpr std::size_t CONF_LINE_SIZE = 4096;

struct ConfEntry {
    std::string_view line;  // without its line feed
    std::string_view key;   // before the first "="
    // The text after the character that follows the first "=", without the line's last character,
    // whatever these two are: with CR line ends a value keeps its closing quote. Ends at a NUL.
    std::string_view value;
    bool hasNul;  // anywhere in the line
};

enum class ConfRead { Entry, Malformed, End };

// Reads one entry after another. The views point into the content.
class ConfTextReader {
 public:
    explicit ConfTextReader(std::string_view content) : rest_(content) {}

    // For a malformed line (too long, empty, without "=") only `line` is set. Throws
    // std::out_of_range at a line that ends with its first "=".
    ConfRead next(ConfEntry& entry);

 private:
    std::string_view rest_;
};

// Length of the line that would be written. As with a bounded formatter, 4096 for a line that fills
// the buffer and -1 for a longer one.
int confLineLength(std::string_view key, std::string_view value);

// Checks that an entry would read back as written. Returns 7 (XERR_2BIG) for a line of 4096 bytes
// or more, 22 (XERR_INVAL) for a line feed, or a "=" or NUL in the key.
XErr confCheckEntry(std::string_view key, std::string_view value);

// The same for an entry that was read and has no NUL: only its length can be wrong.
XErr confCheckReadEntry(std::string_view key, std::string_view value);

// Writes the rest of a checked entry's line after its key, and returns the end. The caller provides
// the space. A value ends at its first NUL.
char* confEndLine(char* afterKey, std::string_view value);

#endif
