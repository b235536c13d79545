#ifndef CONF_CONFVIEWTEXT_H
#define CONF_CONFVIEWTEXT_H

#include <optional>
#include <string>
#include <string_view>

#include "conf/ConfView.h"
#include "xpl/Xerr.h"

// From a file's text to the store's memory and back. Like the view itself: no file, no log line, no
// lock.

// A line that no load goes past. Views into the text.
struct ConfBadLine {
    std::string_view line;
    std::string_view key;
    const char* directory;  // that lacks the key's property; null: the line itself is malformed
};

// Applies the lines in their order, up to a bad one. The instances of these lines are the known
// ones then. Adds the keys of deprecated properties to `deprecated`. Throws std::out_of_range at a
// line that ends with its "=".
std::optional<ConfBadLine> confReadView(ConfView& view, ConfView::Names& deprecated,
                                        std::string_view text);

// An entry that would not read back.
struct ConfRefusedEntry {
    XErr err;  // as confCheckEntry has it
    std::string key;
    std::string value;
};

// Replaces `text` with a line for each committed value, in byte order of the keys, up to one that
// is refused.
std::optional<ConfRefusedEntry> confWriteView(const ConfView& view, std::string& text);

#endif
