#ifndef CONF_CONFLOAD_H
#define CONF_CONFLOAD_H

#include <optional>
#include <string>
#include <string_view>

#include "conf/ConfStore.h"
#include "conf/ConfViewText.h"
#include "xpl/Xattributes.h"
#include "xpl/Xerr.h"

// The steps of a load: read the file, apply it, report. The caller also holds the file lock.

// Reads the store's file; `text` stays empty when the store has none.
[[nodiscard]] XErr confReadFile(ConfStore& store, std::string& text) XTS_REQUIRES(store.lock);

// Applies the text up to a bad line. The returned views point into the text.
[[nodiscard]] std::optional<ConfBadLine> confApplyFile(ConfStore& store, std::string_view text)
    XTS_REQUIRES(store.lock, store.viewLock);

// Returns 0, or -1 after logging the bad line.
[[nodiscard]] XErr confReport(const std::optional<ConfBadLine>& bad);

#endif
