// Loading a configuration, and reading one value so that nothing stays unparsed.
#include <QSettings>
#include <memory>

#include "Bench.h"
#include "Floor.h"
#include "SampleConf.h"
#include "conf/Conf.h"

namespace {

constexpr const char* kLastKey = "vtr.version_machine_id";

struct Files {
    explicit Files(int instances) : store(instances) {
        const std::string text = sampleText(store.values);
        library = wideForTests(store.path);
        settings = QString::fromStdString(store.folder.write("settings.ini", text));
        settingsWide = settings.toStdWString();
        profile = wideForTests(store.folder.write("profile.ini", "[General]\n" + text));
    }

    SampleStore store;
    std::wstring library;
    QString settings;
    std::wstring settingsWide;
    std::wstring profile;
    std::unique_ptr<ConfStore> fresh;
    std::unique_ptr<QSettings> qt;
    KeyValues map;
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
            floorTouch(files->settingsWide.c_str());  // or the parsed file of the last time serves
        },
        [files] {
            files->qt = std::make_unique<QSettings>(files->settings, QSettings::IniFormat);
            benchCheck(files->qt->contains(kLastKey), "QSettings has not read its file");
        });
}

std::function<double(std::int64_t)> profileLoad(const std::shared_ptr<Files>& files) {
    return timedAfter(
        [files] {
            ::WritePrivateProfileStringW(nullptr, nullptr, nullptr, files->profile.c_str());
            floorTouch(files->profile.c_str());
        },
        [files] {
            wchar_t value[64];
            ::GetPrivateProfileStringW(L"General", L"vtr.version_machine_id", L"missing", value, 64,
                                       files->profile.c_str());
            benchCheck(std::wstring(value) != L"missing", "the profile was not read");
        });
}

std::function<double(std::int64_t)> floorLoadOf(const std::shared_ptr<Files>& files) {
    return timedAfter([files] { files->map.clear(); },
                      [files] {
                          files->map = floorLoad(files->library.c_str());
                          benchUse(valueSize(files->map));
                      });
}

std::vector<Side> loadSides(int instances) {
    const auto files = std::make_shared<Files>(instances);
    return {{"library", 0, libraryLoad(files)},
            {"QSettings", 0.1, settingsLoad(files)},
            {"profile API", 0, profileLoad(files)},
            {"floor: ordered map", 0.6, floorLoadOf(files)}};
}

std::vector<Side> reloadSides(int instances) {
    const auto files = std::make_shared<Files>(instances);
    return {{"library", 0, timed([files] {
                 benchCheck(confReload(files->store.store) == XERR_SUCCESS, "reload failed");
             })},
            {"floor: ordered map", 0.6, floorLoadOf(files)}};
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
