#ifndef CONF_CONFLOAD_H
#define CONF_CONFLOAD_H

#include <string_view>

#include "conf/ConfStore.h"
#include "xpl/Xattributes.h"
#include "xpl/Xerr.h"

// Reads the store's file into its values. For callers that hold all the locks.
[[nodiscard]] XErr confLoad(ConfStore& store) XTS_REQUIRES(store.lock);

// confAddInstance for callers that hold the lock.
XErr confAddInstanceLocked(ConfStore& store, std::string_view name) XTS_REQUIRES(store.lock);

#endif
