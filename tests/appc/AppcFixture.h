#ifndef TESTS_APPCFIXTURE_H
#define TESTS_APPCFIXTURE_H

#include "appc/Appc.h"
#include "appc/AppcStore.h"
#include "support/LogCapture.h"
#include "support/TempFolder.h"
#include "support/TestHeaders.h"

// An app as a JSON object. The values are JSON.
struct Element {
    std::string package = R"("com.a")";
    std::string activity = R"("com.a.Main")";
    std::string appLabel = R"("A")";
    std::string versionCode = "1";
    std::string versionName = R"("1.0")";

    std::string text() const;
};

std::string arrayOf(const std::vector<std::string>& elements);

// An app whose values need no escapes in JSON.
struct PlainApp {
    std::string package;
    std::string activity;
    std::string appLabel;
    int versionCode;
    std::string versionName;
};

const std::vector<PlainApp> kTwo{{"com.a", "com.a.Main", "A", 1, "1.0"},
                                 {"com.b", "com.b.Main", "B", 2, "2.0"}};

// The expected file and listing of apps, made without the library's code. `folder` is the folder of
// the icons, escaped as in JSON.
std::string fileOf(const std::vector<PlainApp>& apps);
std::string listingOf(const std::vector<PlainApp>& apps, const std::string& folder);

// The lines with "N" for the numbers of source lines.
Lines withoutNumbers(Lines lines);

// File locks are machine-wide, so their names depend on the data folder.
std::string lockPrefixOf(const std::string& data);

// Whether another thread could take the file lock of "Nougat64".
bool isFileLockFree(const std::string& data);

bool operator==(const AppcApp& a, const AppcApp& b);

Lines packagesOf(AppcStore& store);

// Updates an app with fixed values. updated() is the app that the file then has.
XErr update(AppcStore& store, const std::string& package, const std::string& icon = "");
PlainApp updated(const std::string& package);

// A cache and its data folder.
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

    // The names in the cache's folder.
    Lines list() const;

    bool isFileLockFree() const { return ::isFileLockFree(data.path()); }

    Lines packages() { return packagesOf(store); }
    AppcApp app(const std::string& package);
    std::size_t count() { return packages().size(); }

    TempFolder data;
    LogCapture log;
    AppcStore store{appcDiskFiles(), data.path() + "\\",
                    data.path() + "\\/Engine/UserData/SharedFolder/", lockPrefixOf(data.path())};
};

// Another process's cache in the data folder.
struct ForeignStore : AppcStore {
    explicit ForeignStore(const std::string& data, AppcFiles& files = appcDiskFiles())
        : AppcStore(files, data + "\\", data + "\\/Engine/UserData/SharedFolder/",
                    lockPrefixOf(data)) {}
};

// The disk, with operations that fail.
class FailingFiles : public AppcFiles {
 public:
    std::int32_t readError = 0;  // of Windows
    XErr folderError = XERR_SUCCESS;
    bool failOpen = false;
    std::size_t writeLimit = SIZE_MAX;  // a write fails after this many bytes
    bool failMove = false;
    bool throwInWrite = false;  // after creating the file
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

// The same, and records at each step whether the file lock is held.
class LockWatch final : public FailingFiles {
 public:
    explicit LockWatch(std::string data) : data_(std::move(data)) {}

    Lines steps;  // "move, locked"

 private:
    void before(const char* step) override;

    const std::string data_;
};

#endif
