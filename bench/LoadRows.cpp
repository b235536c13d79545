// Loads a configuration and reads one value, so that everything is parsed.
#include <QSettings>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "Bench.h"
#include "Floor.h"
#include "ProfileSide.h"
#include "SampleConf.h"
#include "conf/Conf.h"

namespace {

constexpr const char* kLastKey = "vtr.version_machine_id";

struct Files {
    explicit Files(int instances) : store(instances) {
        const std::string text = sampleText(store.values);
        library = floorPath(store.path);
        settings = floorPath(store.folder.write("settings.ini", text));
        profile = store.folder.write("profile.ini", "[General]\n" + text);
    }

    SampleStore store;
    FloorPath library;
    FloorPath settings;
    std::string profile;
    std::unique_ptr<ConfStore> fresh;
    std::unique_ptr<QSettings> qt;
    KeyValues map;
    std::unique_ptr<FloorMutex> mutex;
};

std::size_t valueSize(const KeyValues& values) { return values.find(kLastKey)->second.size(); }

std::function<double(std::int64_t)> libraryLoad(const std::shared_ptr<Files>& files) {
    return timedAfter(
        [files] {
            files->fresh.reset();
            files->fresh = std::make_unique<ConfStore>(files->store.catalogue, confDiskFiles());
        },
        [files] {
            benchCheck(confLibInit(*files->fresh, files->store.path, false) == XERR_SUCCESS,
                       "init failed");
            benchUse(confGetString(*files->fresh, kLastKey));
        });
}

std::function<double(std::int64_t)> settingsLoad(const std::shared_ptr<Files>& files) {
    return timedAfter(
        [files] {
            files->qt.reset();
            floorTouch(files->settings);  // invalidates the cached parsed file
        },
        [files] {
            files->qt = std::make_unique<QSettings>(
                QString::fromStdString(files->settings.u8string()), QSettings::IniFormat);
            benchCheck(files->qt->contains(kLastKey), "QSettings has not read its file");
        });
}

void floorLoadLocked(Files& files) {
    const std::lock_guard<FloorMutex> guard(*files.mutex);
    files.map = floorLoad(files.library);
    benchUse(valueSize(files.map));
}

std::function<double(std::int64_t)> floorLoadOf(const std::shared_ptr<Files>& files) {
    return timedAfter(
        [files] {
            files->map.clear();
            files->mutex.reset();
        },
        [files] {
            files->mutex = std::make_unique<FloorMutex>("QX-Bridge-bench");
            floorLoadLocked(*files);
        });
}

std::function<double(std::int64_t)> floorReloadOf(const std::shared_ptr<Files>& files) {
    files->mutex = std::make_unique<FloorMutex>("QX-Bridge-bench");
    return timedAfter([files] { files->map.clear(); }, [files] { floorLoadLocked(*files); });
}

// With a small file, most of the time is system calls that the library makes too.
double floorAim(int instances) { return instances == 10 ? 1.0 : 0.6; }

std::vector<Side> loadSides(int instances) {
    const auto files = std::make_shared<Files>(instances);
    std::vector<Side> sides{{"library", 0, libraryLoad(files)},
                            {"QSettings", 0.1, settingsLoad(files)}};
    if (const auto profile = profileSide(files->profile, kLastKey)) sides.push_back(*profile);
    sides.push_back({"floor: lock, read, ordered map", floorAim(instances), floorLoadOf(files)});
    return sides;
}

std::vector<Side> reloadSides(int instances) {
    const auto files = std::make_shared<Files>(instances);
    return {{"library", 0, timed([files] {
                 benchCheck(confReload(files->store.store) == XERR_SUCCESS, "reload failed");
             })},
            {"floor: lock, read, ordered map", floorAim(instances), floorReloadOf(files)}};
}

}  // namespace

void addLoadRows(Rows& rows) {
    for (const int count : kInstanceCounts) {
        const std::string size = std::to_string(count);
        rows.push_back({"load/" + size, "load a configuration of " + size + " instances",
                        [count] { return loadSides(count); }});
    }
    for (const int count : kInstanceCounts) {
        const std::string size = std::to_string(count);
        rows.push_back({"reload/" + size, "load it again, " + size + " instances",
                        [count] { return reloadSides(count); }});
    }
}
