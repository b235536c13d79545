#ifndef CONF_CONFLOAD_H
#define CONF_CONFLOAD_H

#include <optional>
#include <string>
#include <string_view>

#include "conf/ConfStore.h"
#include "conf/ConfViewText.h"
#include "xpl/Xattributes.h"
#include "xpl/Xerr.h"

// A load in its steps: the file, the memory, the log line. For callers that hold the file lock too.

// The text of the store's file; nothing when it has none.
[[nodiscard]] XErr confReadFile(ConfStore& store, std::string& text) XTS_REQUIRES(store.lock);

// Applies that text, up to a bad line, which points into it.
[[nodiscard]] std::optional<ConfBadLine> confApplyFile(ConfStore& store, std::string_view text)
    XTS_REQUIRES(store.lock, store.viewLock);

// -1 after a log line when there was a bad one.
[[nodiscard]] XErr confReport(const std::optional<ConfBadLine>& bad);

#endif
