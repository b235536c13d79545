#ifndef TESTS_CONFFIXTURE_H
#define TESTS_CONFFIXTURE_H

#include <gtest/gtest.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "ConfExpectation.h"
#include "conf/Conf.h"
#include "conf/ConfStore.h"
#include "support/LogCapture.h"
#include "support/TempFolder.h"

// A name for the file lock of the configuration at `path`. The product's lock is shared by the
// whole machine, and a wait of a second for it is logged: tests that run at the same time would log
// each other's.
std::string ownLockName(const std::string& path);

// A store of the test's own over a folder of the test's own.
class ConfTest : public ::testing::Test {
 protected:
    ConfTest() { store.fileLockName = ownLockName(path()); }

    // Writes the file and initialises the store with it.
    XErr init(std::string_view content);
    XErr initWithoutFile();

    std::string path() const { return folder / "vantrel.conf"; }

    // The committed value, whatever its type; nothing when the key is absent.
    std::optional<std::string> committed(const std::string& key);
    std::size_t committedCount();

    TempFolder folder;
    LogCapture log;
    ConfCatalogue catalogue = confProductCatalogue();
    ConfStore store{catalogue, confDiskFiles()};
};

#endif
