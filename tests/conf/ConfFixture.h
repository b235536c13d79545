#ifndef TESTS_CONFFIXTURE_H
#define TESTS_CONFFIXTURE_H

#include "ConfExpectation.h"
#include "conf/Conf.h"
#include "conf/ConfStore.h"
#include "support/LogCapture.h"
#include "support/Subprocess.h"
#include "support/TempFolder.h"
#include "support/TestHeaders.h"

using Names = std::set<std::string, std::less<>>;

// A name for the file lock of the configuration at `path`. The product's lock is shared by the
// whole machine, and a wait of a second for it is logged, so concurrent tests would log each
// other's waits.
std::string ownLockName(const std::string& path);

// A text property that is deprecated.
ConfProperty deprecatedText(const std::string& defaultValue = "");

// A subprocess must end with the configuration's fatal break, right after `line` if there is one.
// Pass the function of the break where the log shows it.
void expectConfBreak(const std::string& subprocess, const SubprocessArguments& arguments,
                     const std::string& line, const std::string& function = "");

// A store with its file in a temporary folder.
class ConfTest : public ::testing::Test {
 protected:
    ConfTest() { store.fileLockName = ownLockName(path()); }

    // Writes the file and initialises the store with it.
    XErr init(std::string_view content);

    // The same with any store. It must succeed, and the log is empty afterwards.
    void load(ConfStore& other, std::string_view content, bool allowDeprecated = false);
    void given(std::string_view content) { load(store, content); }

    XErr initWithoutFile() { return confLibInit(store, "", /*allowDeprecated=*/false); }

    void set(std::string_view key, std::string_view value) {
        EXPECT_EQ(confSetString(store, key, value), 0);
    }
    void set(std::string_view key, int value) { EXPECT_EQ(confSetI32(store, key, value), 0); }

    std::string path() const { return folder / "vantrel.conf"; }
    std::string file() const { return folder.read("vantrel.conf"); }
    void writeFile(std::string_view content) const { folder.write("vantrel.conf", content); }

    // The file holds these entries and the defaults of all other keys.
    void expectFile(const Entries& entries, const std::string& name = "vantrel.conf") const;

    // Whether the configuration's file has the line.
    bool hasLine(const std::string& line) const;

    // The committed value, of any type. Nothing if the key is absent.
    std::optional<std::string> committed(const std::string& key);
    std::size_t committedCount();

    // Waits until another thread holds the store's lock: in a load or a commit.
    void waitUntilLocked();

    TempFolder folder;
    LogCapture log;
    ConfCatalogue catalogue = confProductCatalogue();
    ConfStore store{catalogue, confDiskFiles()};
};

#endif
