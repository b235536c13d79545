// Reads and sets while other threads work. The times are of single operations, because the longest
// wait of a caller matters, not the average.
#include <QSettings>
#include <QString>
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "Bench.h"
#include "Floor.h"
#include "Library.h"
#include "OtherProcess.h"

namespace {

constexpr double kRoundNanoseconds = 20e6;
constexpr std::int64_t kReads = 1000;  // per block

using Work = std::function<void()>;

// Repeats an operation on its own thread.
class Busy {
 public:
    explicit Busy(Work work) : work_(std::move(work)), thread_([this] { run(); }) {
        while (!begun_) std::this_thread::yield();
    }
    ~Busy() {
        ends_ = true;
        thread_.join();
    }
    Busy(const Busy&) = delete;
    Busy& operator=(const Busy&) = delete;

 private:
    void run() {
        while (!ends_) {
            work_();
            begun_ = true;
        }
    }

    Work work_;
    std::atomic<bool> begun_{false};
    std::atomic<bool> ends_{false};
    std::thread thread_;
};

// The time of each operation during a round.
void timeEach(const Work& work, std::vector<double>& times) {
    const auto start = std::chrono::steady_clock::now();
    for (auto before = start; nanosecondsSince(start) < kRoundNanoseconds;) {
        before = std::chrono::steady_clock::now();
        work();
        times.push_back(nanosecondsSince(before));
    }
}

Side besideThreads(const char* name, const Work& work, const std::vector<Work>& others) {
    return {name, 0, nullptr, [=](std::vector<double>& times) {
                std::vector<std::unique_ptr<Busy>> threads;
                for (const Work& other : others) threads.push_back(std::make_unique<Busy>(other));
                timeEach(work, times);
            }};
}

Side besideProcess(const char* name, const Work& work, const std::function<void(bool)>& other) {
    return {name, 0, nullptr, [=](std::vector<double>& times) {
                other(true);
                timeEach(work, times);
                other(false);
            }};
}

// One bool and one text of a configuration.
struct Keys {
    explicit Keys(const KeyValues& values)
        : boolean(someKeys(values, ConfType::Bool, 1).front()),
          text(someKeys(values, ConfType::String, 1).front()) {}

    std::string boolean;
    std::string text;
};

Work libraryRead(const Library& library, const Keys& keys) {
    return [&library, key = keys.boolean] { benchUse(library.getBool(key.c_str())); };
}

Work librarySet(const Library& library, const Keys& keys) {
    const auto odd = std::make_shared<bool>(false);
    return [&library, odd, key = keys.text] {
        *odd = !*odd;
        benchCheck(library.setString(key.c_str(), *odd ? "mine" : "yours") == BRIDGE_SUCCESS,
                   "set failed");
    };
}

Work libraryCommit(const Library& library, const Keys& keys) {
    return [&library, set = librarySet(library, keys)] {
        set();
        benchCheck(library.commit() == BRIDGE_SUCCESS, "commit failed");
    };
}

// A file with the same content. Each thread has its own QSettings object, as Qt requires. The
// objects share the parsed file.
class Settings {
 public:
    explicit Settings(const KeyValues& values)
        : folder_(std::make_shared<TempFolder>()),
          path_(QString::fromStdString(
              floorPath(folder_->write("settings.ini", sampleText(values))).u8string())) {}

    Work read(const Keys& keys) const {
        return [settings = open(), key = QString::fromStdString(keys.boolean)] {
            benchUse(settings->value(key).toBool());
        };
    }
    Work set(const Keys& keys) const { return setOf(open(), keys); }
    Work sync(const Keys& keys) const {
        const auto settings = open();
        return [settings, set = setOf(settings, keys)] {
            set();
            settings->sync();
        };
    }

 private:
    std::shared_ptr<QSettings> open() const {
        return {new QSettings(path_, QSettings::IniFormat),
                [folder = folder_](QSettings* settings) { delete settings; }};
    }
    static Work setOf(const std::shared_ptr<QSettings>& settings, const Keys& keys) {
        const auto odd = std::make_shared<bool>(false);
        return [settings, odd, key = QString::fromStdString(keys.text)] {
            *odd = !*odd;
            settings->setValue(key, *odd ? QStringLiteral("mine") : QStringLiteral("yours"));
        };
    }

    std::shared_ptr<TempFolder> folder_;
    QString path_;
};

std::vector<Side> readBesideCommit(int instances) {
    const Library& library = Library::get(instances);
    const Keys keys(library.values());
    const Settings settings(library.values());
    const Work read = libraryRead(library, keys);
    std::vector<Side> sides{
        besideThreads("library, a thread commits", read, {libraryCommit(library, keys)}),
        besideThreads("library, nobody commits", read, {})};
    if (const auto other = otherProcess(instances)) {
        sides.push_back(besideProcess("library, another process commits elsewhere", read, other));
        // Not in the native build: Qt's mutex is not fair there, and a read can wait minutes for a
        // thread that syncs.
        sides.push_back(
            besideThreads("QSettings, a thread syncs", settings.read(keys), {settings.sync(keys)}));
    }
    sides.push_back(besideThreads("QSettings, nobody syncs", settings.read(keys), {}));
    return sides;
}

std::vector<Side> readBesideSets() {
    const Library& library = Library::get();
    const Keys keys(library.values());
    const Settings settings(library.values());
    return {besideThreads("library, two threads set", libraryRead(library, keys),
                          {librarySet(library, keys), librarySet(library, keys)}),
            besideThreads("QSettings, two threads set", settings.read(keys),
                          {settings.set(keys), settings.set(keys)})};
}

std::vector<Side> setBesideReads() {
    const Library& library = Library::get();
    const Keys keys(library.values());
    const Settings settings(library.values());
    return {besideThreads("library, two threads read", librarySet(library, keys),
                          {libraryRead(library, keys), libraryRead(library, keys)}),
            besideThreads("QSettings, two threads read", settings.set(keys),
                          {settings.read(keys), settings.read(keys)})};
}

// The time per block of reads when several threads read at the same time. It begins when all
// threads have started, because starts are slow.
std::function<double(std::int64_t)> together(const std::vector<Work>& works) {
    return [works](std::int64_t times) {
        std::atomic<std::size_t> missing{works.size()};
        std::vector<double> took(works.size());
        std::vector<std::thread> threads;
        for (std::size_t at = 0; at < works.size(); ++at) {
            threads.emplace_back([&, at] {
                --missing;
                while (missing > 0) std::this_thread::yield();
                took[at] = timed(works[at])(times * kReads);
            });
        }
        for (std::thread& thread : threads) thread.join();
        return *std::max_element(took.begin(), took.end()) / static_cast<double>(works.size());
    };
}

std::vector<Side> readTwo() {
    const Library& library = Library::get();
    const Keys keys(library.values());
    const Settings settings(library.values());
    const Work read = libraryRead(library, keys);
    return {{"library, two threads", 0, together({read, read})},
            {"library, one thread alone", 0, together({read})},
            {"QSettings, two threads", 0, together({settings.read(keys), settings.read(keys)})},
            {"QSettings, one thread alone", 0, together({settings.read(keys)})}};
}

}  // namespace

void addThreadRows(Rows& rows) {
    for (const int instances : Library::sizes()) {
        const std::string size = std::to_string(instances);
        rows.push_back({"read/beside-commit/" + size,
                        "read a bool beside commits, " + size + " instances",
                        [instances] { return readBesideCommit(instances); }});
    }
    rows.push_back({"read/beside-sets", "read a bool beside two setters", readBesideSets});
    rows.push_back({"set/beside-reads", "set a text beside two readers", setBesideReads});
    rows.push_back(
        {"read/two", "read a bool, in two threads at once", readTwo, static_cast<double>(kReads)});
}
