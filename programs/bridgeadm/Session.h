#ifndef BRIDGEADM_SESSION_H
#define BRIDGEADM_SESSION_H

#include <string>

#include "conf/Conf.h"
#include "shared/ProgramRun.h"
#include "xpl/Xerr.h"

// One run of the program. Every function that answers a bool has printed the error when it is
// false.
class Session : public ProgramRun {
 public:
    // Starts the log, which everything else of the library needs.
    bool start();

    // The same, and loads the product's configuration into the store.
    bool startWithConfiguration();

    ConfStore& store() const { return confStore(); }

    bool isKnown(const std::string& instance) const;
    bool requireInstance(const std::string& instance);

    // Whether the name can become an instance that every program can read.
    bool requirePossibleInstance(const std::string& instance);

    bool commit();

    // Starts with the configuration, which must know the instance, and opens its app cache.
    bool openCache(const std::string& instance);

    // Whether this can be the name of an Android package. It becomes a part of file names.
    bool requirePackageName(const std::string& package);

    // For the result of an operation that ends with the app cache's files written.
    bool saved(XErr err);
};

#endif
