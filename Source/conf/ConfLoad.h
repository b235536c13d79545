#ifndef CONF_CONFLOAD_H
#define CONF_CONFLOAD_H

#include <string>
#include <string_view>

#include "conf/ConfStore.h"
#include "xpl/Xattributes.h"
#include "xpl/Xerr.h"

// Reads the store's file into its view. For callers that hold all the locks.
[[nodiscard]] XErr confLoad(ConfStore& store) XTS_REQUIRES(store.lock);

// The same with the caller's room for the file's text.
[[nodiscard]] XErr confLoad(ConfStore& store, std::string& text) XTS_REQUIRES(store.lock);

#endif
