#include "AppcFixture.h"

#include <regex>

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

static std::string arrayText(const std::vector<PlainApp>& apps, const std::string& icon) {
    std::string text = "[\n";
    for (const PlainApp& app : apps) {
        if (&app != &apps.front()) text += ",\n";
        text += "    {\n        \"activity\": \"" + app.activity + "\",\n        \"appLabel\": \"" +
                app.appLabel + "\",\n        \"" + icon + app.package +
                ".png\",\n        \"package\": \"" + app.package +
                "\",\n        \"versionCode\": " + std::to_string(app.versionCode) +
                ",\n        \"versionName\": \"" + app.versionName + "\"\n    }";
    }
    return text + (apps.empty() ? "]\n" : "\n]\n");
}

std::string fileOf(const std::vector<PlainApp>& apps) {
    return arrayText(apps, "iconFileName\": \"");
}

std::string listingOf(const std::vector<PlainApp>& apps, const std::string& folder) {
    return arrayText(apps, "iconFilePath\": \"" + folder);
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
    // On another thread, because this one may hold the lock.
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

Lines packagesOf(AppcStore& store) {
    std::list<std::string> list;
    appcGetPackages(store, list);
    return {list.begin(), list.end()};
}

XErr update(AppcStore& store, const std::string& package, const std::string& icon) {
    return appcUpdateApp(store, package, "m", "l", 9, "v", icon);
}

PlainApp updated(const std::string& package) { return {package, "m", "l", 9, "v"}; }

AppcTest::AppcTest() {
    data.makeFolder("Engine\\Nougat64");
    data.makeFolder("Engine\\UserData\\SharedFolder");
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

AppcApp AppcTest::app(const std::string& package) {
    AppcApp app;
    EXPECT_EQ(appcGetApp(store, package, &app.activity, &app.appLabel, &app.versionCode,
                         &app.versionName, &app.iconFileName),
              0)
        << package;
    return app;
}

std::int32_t FailingFiles::read(const std::string& path, std::string& content) {
    before("read");
    return readError != 0 ? readError : appcDiskFiles().read(path, content);
}

XErr FailingFiles::makeFolder(const std::string& path) {
    before("folder");
    return folderError == XERR_SUCCESS ? appcDiskFiles().makeFolder(path) : folderError;
}

bool FailingFiles::isReplaceable(const std::string& path) {
    return appcDiskFiles().isReplaceable(path);
}

AppcWrite FailingFiles::write(const std::string& path, std::string_view text) {
    before("write");
    if (throwInWrite) {
        static_cast<void>(appcDiskFiles().write(path, text.substr(0, 1)));
        throw std::bad_alloc();
    }
    if (failOpen) return AppcWrite::OpenFailed;
    const AppcWrite result = appcDiskFiles().write(path, text.substr(0, writeLimit));
    return writeLimit < text.size() ? AppcWrite::WriteFailed : result;
}

XErr FailingFiles::replace(const std::string& source, const std::string& destination) {
    before("move");
    ++moves;
    if (throwInMove) throw std::bad_alloc();
    return failMove ? XERR_ACCES : appcDiskFiles().replace(source, destination);
}

void FailingFiles::remove(const std::string& path) {
    before("remove");
    removed.push_back(path);
    appcDiskFiles().remove(path);
}

void LockWatch::before(const char* step) {
    steps.push_back(step + std::string(isFileLockFree(data_) ? "" : ", locked"));
}
