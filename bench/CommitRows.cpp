// Commits of changes, without the time for the changes themselves.
#include <QSettings>
#include <cstddef>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

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
            QString::fromStdString(floorPath(store.folder.write("settings.ini", text)).u8string()),
            QSettings::IniFormat);
        floor = floorPath(store.folder.write("floor.conf", text));
        temporary = floorPath(store.folder / "floor.conf-temp");
        for (const std::string& key : keys) qtKeys.push_back(QString::fromStdString(key));
    }

    std::string value() { return "value " + std::to_string(++version); }

    SampleStore store;
    std::vector<std::string> keys;
    std::vector<QString> qtKeys;
    std::unique_ptr<QSettings> settings;
    FloorPath floor;
    FloorPath temporary;
    FloorMutex mutex{"QX-Bridge-bench"};
    int version = 0;
};
using CommitPtr = std::shared_ptr<Commit>;

void floorCommit(Commit& commit) {
    const std::lock_guard<FloorMutex> guard(commit.mutex);
    const std::string content = floorRead(commit.floor);
    {
        FloorFile file(commit.temporary, FloorFile::Create);
        file.write(content);
        file.flush();
    }
    floorMove(commit.temporary, commit.floor);
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
            // Ten instances have fewer texts.
            const std::string amount = std::to_string(changes);
            const std::string size = std::to_string(count);
            rows.push_back({"commit/" + amount + "/" + size,
                            "commit " + amount + (changes == 1 ? " change" : " changes") + ", " +
                                size + " instances",
                            [=] { return commitSides(count, changes); }});
        }
    }
}
