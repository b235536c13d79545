#ifndef TESTS_CONFFIXTURE_H
#define TESTS_CONFFIXTURE_H

#include "ConfExpectation.h"
#include "conf/Conf.h"
#include "conf/ConfStore.h"
#include "support/LogCapture.h"
#include "support/Subprocess.h"
#include "support/TempFolder.h"
#include "support/TestHeaders.h"

// A name for the file lock of the configuration at `path`. The product's lock is shared by the
// whole machine, and a wait of a second for it is logged: tests that run at the same time would log
// each other's.
std::string ownLockName(const std::string& path);

// A subprocess must end with a fatal break of the configuration's, right after this line, if it is
// not empty. The function of the break is there where the log shows it.
void expectConfBreak(const std::string& subprocess, const SubprocessArguments& arguments,
                     const std::string& line, const std::string& function = "");

// A store of the test's own over a folder of the test's own.
class ConfTest : public ::testing::Test {
 protected:
    ConfTest() { store.fileLockName = ownLockName(path()); }

    // Writes the file and initialises the store with it.
    XErr init(std::string_view content);

    // The same with another store, which must take it.
    void load(ConfStore& other, std::string_view content, bool allowDeprecated = false);
    XErr initWithoutFile();

    // The file holds these entries and, beside them, all the defaults.
    void expectFile(const Entries& entries, const std::string& name = "vantrel.conf") const;

    // Whether the configuration's file has the line.
    bool hasLine(const std::string& line) const;

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
