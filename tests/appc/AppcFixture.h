#ifndef TESTS_APPCFIXTURE_H
#define TESTS_APPCFIXTURE_H

#include "appc/Appc.h"
#include "appc/AppcStore.h"
#include "support/LogCapture.h"
#include "support/TempFolder.h"
#include "support/TestHeaders.h"

// The text of a JSON object, with its values as they stand in JSON.
struct Element {
    std::string package = R"("com.a")";
    std::string activity = R"("com.a.Main")";
    std::string appLabel = R"("A")";
    std::string versionCode = "1";
    std::string versionName = R"("1.0")";

    std::string text() const;
};

// The texts of elements as an array.
std::string arrayOf(const std::vector<std::string>& elements);

// What the file holds for apps, laid out without the library's code. Values are written as given:
// no character in them may need an escape.
struct PlainApp {
    std::string package;
    std::string activity;
    std::string appLabel;
    int versionCode;
    std::string versionName;
};
std::string fileOf(const std::vector<PlainApp>& apps);

// The same as the listing has it, with the folder of the icons as it stands in JSON.
std::string listingOf(const std::vector<PlainApp>& apps, const std::string& folder);

// The lines, with the number of the source line in them as "N".
Lines withoutNumbers(Lines lines);

// File locks are the machine's: those of a data folder have names of their own.
std::string lockPrefixOf(const std::string& data);

// Whether another thread could take the file lock of the instance "Nougat64" now.
bool isFileLockFree(const std::string& data);

bool operator==(const AppcApp& a, const AppcApp& b);

// A cache of the test's own, in a data folder of the test's own.
class AppcTest : public ::testing::Test {
 protected:
    AppcTest();

    // Writes the file and opens the cache with it.
    XErr init(std::string_view content);

    std::string dir(const std::string& instance = "Nougat64") const;
    std::string file() const { return dir() + "AppCache.json"; }
    void write(std::string_view content) const;
    std::string read() const;
    bool exists() const;

    // Names of what is in the cache's folder.
    Lines list() const;

    bool isFileLockFree() const { return ::isFileLockFree(data.path()); }

    std::vector<std::string> packages();
    AppcApp app(const std::string& package);
    std::size_t count();

    TempFolder data;
    LogCapture log;
    AppcStore store{appcDiskFiles(), data.path() + "\\",
                    data.path() + "\\/Engine/UserData/SharedFolder/", lockPrefixOf(data.path())};
};

// A cache over the folder `data` of another process.
struct ForeignStore : AppcStore {
    explicit ForeignStore(const std::string& data, AppcFiles& files = appcDiskFiles())
        : AppcStore(files, data + "\\", data + "\\/Engine/UserData/SharedFolder/",
                    lockPrefixOf(data)) {}
};

// The disk, but for the operations that are to fail.
class FailingFiles : public AppcFiles {
 public:
    std::int32_t readError = 0;  // of Windows
    XErr folderError = XERR_SUCCESS;
    bool failOpen = false;
    std::size_t writeLimit = SIZE_MAX;  // bytes that reach the file before the write fails
    bool failMove = false;
    bool throwInWrite = false;  // when the file exists
    bool throwInMove = false;

    int moves = 0;
    Lines removed;

    std::int32_t read(const std::string& path, std::string& content) override;
    XErr makeFolder(const std::string& path) override;
    bool isReplaceable(const std::string& path) override;
    AppcWrite write(const std::string& path, std::string_view text) override;
    XErr replace(const std::string& source, const std::string& destination) override;
    void remove(const std::string& path) override;

 protected:
    virtual void before(const char* /*step*/) {}
};

// The same with a look at the file lock at each step.
class LockWatch final : public FailingFiles {
 public:
    explicit LockWatch(std::string data) : data_(std::move(data)) {}

    Lines steps;  // "move, locked"

 private:
    void before(const char* step) override;

    const std::string data_;
};

#endif
