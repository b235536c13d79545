#ifndef BRIDGEADM_SESSION_H
#define BRIDGEADM_SESSION_H

#include <string>

#include "conf/Conf.h"
#include "shared/ProgramRun.h"
#include "xpl/Xerr.h"

// One run of bridgeadm. Functions that return a bool have reported an error if it is false.
class Session : public ProgramRun {
 public:
    // Starts the log, which all parts of the library need.
    bool start();

    // Starts the log and loads the product's configuration into the store.
    bool startWithConfiguration();

    ConfStore& store() const { return confStore(); }

    bool isKnown(const std::string& instance) const;
    bool requireInstance(const std::string& instance);

    // Whether every program could read an instance of this name.
    bool requirePossibleInstance(const std::string& instance);

    bool commit();

    // Calls startWithConfiguration() and opens the app cache of an instance, which must exist.
    bool openCache(const std::string& instance);

    // Whether this can be the name of an Android package. File names are made from it.
    bool requirePackageName(const std::string& package);

    // Checks the result of an operation that writes the app cache's files.
    bool saved(XErr err);
};

#endif
