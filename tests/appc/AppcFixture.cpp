#include "AppcFixture.h"

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <list>
#include <new>
#include <regex>
#include <string_view>
#include <thread>
#include <tuple>

#include "support/Platform.h"

namespace fs = std::filesystem;

std::string Element::text() const {
    return R"({"package": )" + package + R"(, "activity": )" + activity + R"(, "appLabel": )" +
           appLabel + R"(, "versionCode": )" + versionCode + R"(, "versionName": )" + versionName +
           "}";
}

std::string arrayOf(const std::vector<std::string>& elements) {
    std::string text;
    for (const std::string& element : elements) text += (text.empty() ? "" : ",") + element;
    return "[" + text + "]";
}

std::string fileOf(const std::vector<PlainApp>& apps) {
    std::string text = "[\n";
    for (const PlainApp& app : apps) {
        if (&app != &apps.front()) text += ",\n";
        text += "    {\n        \"activity\": \"" + app.activity + "\",\n        \"appLabel\": \"" +
                app.appLabel + "\",\n        \"iconFileName\": \"" + app.package +
                ".png\",\n        \"package\": \"" + app.package +
                "\",\n        \"versionCode\": " + std::to_string(app.versionCode) +
                ",\n        \"versionName\": \"" + app.versionName + "\"\n    }";
    }
    return text + (apps.empty() ? "]\n" : "\n]\n");
}

Lines withoutNumbers(Lines lines) {
    static const std::regex number("(appcReadFromJsonObj): [0-9]+:");
    for (std::string& line : lines) line = std::regex_replace(line, number, "$1: N:");
    return lines;
}

std::string lockPrefixOf(const std::string& data) {
    return "appc_" + data.substr(data.rfind('\\') + 1) + "_";
}

bool isFileLockFree(const std::string& data) {
    bool isFree = false;
    // This thread may have it itself, and would get it again.
    std::thread([&isFree, &data] {
        XmutexNamed mutex;
        ASSERT_EQ(mutex.init("Global\\vtr_" + lockPrefixOf(data) + "Nougat64_nvo"), 0);
        if (!mutex.try_lock()) return;
        isFree = true;
        mutex.unlock();
    }).join();
    return isFree;
}

bool operator==(const AppcApp& a, const AppcApp& b) {
    const auto tied = [](const AppcApp& app) {
        return std::tie(app.activity, app.appLabel, app.versionCode, app.versionName,
                        app.iconFileName);
    };
    return tied(a) == tied(b);
}

AppcTest::AppcTest() {
    for (const char* folder :
         {"Engine", "Engine\\Nougat64", "Engine\\UserData", "Engine\\UserData\\SharedFolder"}) {
        data.makeFolder(folder);
    }
}

XErr AppcTest::init(std::string_view content) {
    write(content);
    return appcLibInit(store, "Nougat64");
}

std::string AppcTest::dir(const std::string& instance) const {
    return data.path() + "\\Engine/" + instance + "/AppCache/";
}

void AppcTest::write(std::string_view content) const {
    fs::create_directory(systemPath(dir()));
    writeBytes(file(), content);
}

std::string AppcTest::read() const { return readBytes(file()); }

bool AppcTest::exists() const { return fs::exists(systemPath(file())); }

Lines AppcTest::list() const {
    Lines names;
    for (const auto& entry : fs::directory_iterator(systemPath(dir()))) {
        names.push_back(entry.path().filename().u8string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::vector<std::string> AppcTest::packages() {
    std::list<std::string> list;
    appcGetPackages(store, list);
    return {list.begin(), list.end()};
}

AppcApp AppcTest::app(const std::string& package) {
    AppcApp app;
    EXPECT_EQ(appcGetApp(store, package, &app.activity, &app.appLabel, &app.versionCode,
                         &app.versionName, &app.iconFileName),
              0)
        << package;
    return app;
}

std::size_t AppcTest::count() { return packages().size(); }

std::int32_t AppcDisk::read(const std::string& path, std::string& content) {
    return appcDiskFiles().read(path, content);
}

XErr AppcDisk::makeFolder(const std::string& path) { return appcDiskFiles().makeFolder(path); }

bool AppcDisk::isReplaceable(const std::string& path) {
    return appcDiskFiles().isReplaceable(path);
}

AppcWrite AppcDisk::write(const std::string& path, std::string_view text) {
    return appcDiskFiles().write(path, text);
}

XErr AppcDisk::replace(const std::string& source, const std::string& destination) {
    return appcDiskFiles().replace(source, destination);
}

void AppcDisk::remove(const std::string& path) { appcDiskFiles().remove(path); }

std::int32_t FailingFiles::read(const std::string& path, std::string& content) {
    return readError != 0 ? readError : AppcDisk::read(path, content);
}

XErr FailingFiles::makeFolder(const std::string& path) {
    return folderError == XERR_SUCCESS ? AppcDisk::makeFolder(path) : folderError;
}

AppcWrite FailingFiles::write(const std::string& path, std::string_view text) {
    if (throwInWrite) {
        static_cast<void>(AppcDisk::write(path, text.substr(0, 1)));
        throw std::bad_alloc();
    }
    if (failOpen) return AppcWrite::OpenFailed;
    const AppcWrite result = AppcDisk::write(path, text.substr(0, writeLimit));
    return writeLimit < text.size() ? AppcWrite::WriteFailed : result;
}

XErr FailingFiles::replace(const std::string& source, const std::string& destination) {
    ++moves;
    if (throwInMove) throw std::bad_alloc();
    return failMove ? XERR_ACCES : AppcDisk::replace(source, destination);
}

void FailingFiles::remove(const std::string& path) {
    removed.push_back(path);
    AppcDisk::remove(path);
}

std::int32_t LockWatch::read(const std::string& path, std::string& content) {
    note("read");
    return AppcDisk::read(path, content);
}

XErr LockWatch::makeFolder(const std::string& path) {
    note("folder");
    return AppcDisk::makeFolder(path);
}

AppcWrite LockWatch::write(const std::string& path, std::string_view text) {
    note("write");
    return AppcDisk::write(path, text);
}

XErr LockWatch::replace(const std::string& source, const std::string& destination) {
    note("move");
    return failMove ? XERR_ACCES : AppcDisk::replace(source, destination);
}

void LockWatch::remove(const std::string& path) {
    note("remove");
    AppcDisk::remove(path);
}

void LockWatch::note(const char* step) {
    steps.push_back(step + std::string(isFileLockFree(data_) ? "" : ", locked"));
}
