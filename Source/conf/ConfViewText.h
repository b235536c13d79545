#ifndef CONF_CONFVIEWTEXT_H
#define CONF_CONFVIEWTEXT_H

#include <optional>
#include <string>
#include <string_view>

#include "conf/ConfView.h"
#include "xpl/Xerr.h"

// Converts between a file's text and the store's memory. No I/O, logging or locking.

// A line at which a load fails. The views point into the text.
struct ConfBadLine {
    std::string_view line;
    std::string_view key;
    const char* directory;  // log name of the schema without the key; null: malformed line
};

// Applies the lines in order, up to a bad one. Afterwards only the instances of these lines are
// known. Adds the keys of deprecated properties to `deprecated`. Throws std::out_of_range at a line
// that ends with its "=".
std::optional<ConfBadLine> confReadView(ConfView& view, ConfView::Names& deprecated,
                                        std::string_view text);

// An entry that would not read back.
struct ConfRefusedEntry {
    XErr err;  // as returned by confCheckEntry
    std::string key;
    std::string value;
};

// Replaces `text` with a line for each committed value, in byte order of the keys, up to a refused
// one.
std::optional<ConfRefusedEntry> confWriteView(const ConfView& view, std::string& text);

#endif
