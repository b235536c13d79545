// Committing changes. Making them is not part of it.
#include <QSettings>
#include <algorithm>
#include <memory>

#include "Bench.h"
#include "Floor.h"
#include "SampleConf.h"
#include "conf/Conf.h"

namespace {

struct Commit {
    Commit(int instances, std::size_t changes)
        : store(instances), keys(someKeys(store.values, ConfType::String, changes)) {
        const std::string text = sampleText(store.values);
        settings = std::make_unique<QSettings>(
            QString::fromStdString(store.folder.write("settings.ini", text)), QSettings::IniFormat);
        floorPath = wideForTests(store.folder.write("floor.conf", text));
        temporary = floorPath + L"-temp";
        for (const std::string& key : keys) qtKeys.push_back(QString::fromStdString(key));
    }

    std::string value() { return "value " + std::to_string(++version); }

    SampleStore store;
    std::vector<std::string> keys;
    std::vector<QString> qtKeys;
    std::unique_ptr<QSettings> settings;
    std::wstring floorPath;
    std::wstring temporary;
    FloorHandle mutex{::CreateMutexW(nullptr, FALSE, L"Global\\QX-Bridge-bench")};
    int version = 0;
};
using CommitPtr = std::shared_ptr<Commit>;

void floorCommit(Commit& commit) {
    ::WaitForSingleObject(commit.mutex.get(), INFINITE);
    const std::string content = floorRead(commit.floorPath.c_str());
    {
        const FloorHandle file(floorCreate(commit.temporary.c_str()));
        floorWrite(file.get(), content);
        ::FlushFileBuffers(file.get());
    }
    benchCheck(::MoveFileExW(commit.temporary.c_str(), commit.floorPath.c_str(),
                             MOVEFILE_REPLACE_EXISTING) != FALSE,
               "cannot move a file");
    ::ReleaseMutex(commit.mutex.get());
}

std::vector<Side> commitSides(int instances, std::size_t changes) {
    const auto commit = std::make_shared<Commit>(instances, changes);
    return {
        {"library", 0,
         timedAfter(
             [commit] {
                 const std::string value = commit->value();
                 for (const std::string& key : commit->keys) {
                     confSetString(commit->store.store, key, value);
                 }
             },
             [commit] {
                 benchCheck(confCommit(commit->store.store) == XERR_SUCCESS, "commit failed");
             })},
        {"QSettings", 0.25,
         timedAfter(
             [commit] {
                 const QString value = QString::fromStdString(commit->value());
                 for (const QString& key : commit->qtKeys) {
                     commit->settings->setValue(key, value);
                 }
             },
             [commit] {
                 commit->settings->sync();
                 benchCheck(commit->settings->status() == QSettings::NoError, "sync failed");
             })},
        {"floor: lock, read, write, flush, move", 2.0, timed([commit] { floorCommit(*commit); })}};
}

}  // namespace

void addCommitRows(Rows& rows) {
    for (const std::size_t changes : {1u, 1000u}) {
        for (const int count : kInstanceCounts) {
            // Ten instances have fewer texts than that.
            const std::string amount = std::to_string(changes);
            const std::string size = std::to_string(count);
            rows.push_back({"commit/" + amount + "/" + size,
                            "commit " + amount + (changes == 1 ? " change" : " changes") + ", " +
                                size + " instances",
                            [=] { return commitSides(count, changes); }});
        }
    }
}
