// Refused calls with every log level off: the same results, and no line.
#include "AppcFixture.h"
#include "support/Platform.h"
#include "support/SilentCalls.h"

namespace {

class AppcLogOffTest : public AppcTest {
 protected:
    int loadWithFolderAsFile() {
        std::filesystem::create_directories(systemPath(file()));
        const int result = appcLibInit(store, "Nougat64");
        EXPECT_EQ(count(), 0u);
        std::filesystem::remove(systemPath(file()));
        return result;
    }

    // Opens a cache, and saves it to a disk that fails.
    int save(const std::function<void(FailingFiles&)>& fail, std::size_t removed) {
        FailingFiles files;
        fail(files);
        ForeignStore other(data.path(), files);
        EXPECT_EQ(appcLibInit(other, "Nougat64"), 0);
        const int result = appcSaveToFile(other);
        EXPECT_EQ(files.removed.size(), removed);
        return result;
    }
};

}  // namespace

TEST_F(AppcLogOffTest, WhatIsRefusedIsRefusedInSilence) {
    expectSilence({
        {"copy a cache that is not open", -1, 1,
         [&] { return appcCopyInstance(store, "Nougat32", "Nougat32_1"); }},
        {"load no file", 0, 1, [&] { return appcLibInit(store, "Nougat64"); }},
        {"save without a folder", XERR_ACCES, 2,
         [&] { return save([](FailingFiles& files) { files.folderError = XERR_ACCES; }, 0); }},
        {"save without a file", -1, 2,
         [&] { return save([](FailingFiles& files) { files.failOpen = true; }, 0); }},
        {"save without space", -1, 2,
         [&] { return save([](FailingFiles& files) { files.writeLimit = 0; }, 1); }},
        {"save without the move", -1, 2,
         [&] { return save([](FailingFiles& files) { files.failMove = true; }, 1); }},
        {"load a folder", 0, 1, [&] { return loadWithFolderAsFile(); }},
        {"load an object", 0, 1, [&] { return init("{}"); }},
        {"the object's file is deleted", false, 0, [&] { return exists(); }},
        {"load an app without texts", -1, 2, [&] { return init("[{}]"); }},
        {"load a number for a text", -1, 2, [&] { return init(R"([{"package": 5}])"); }},
        {"load", 0, 0, [&] { return init("[]"); }},
        {"sync no list", -1, 1, [&] { return appcSyncInstalledApps(store, nullptr); }},
        {"sync a number for an app", -1, 1,
         [&] { return appcSyncInstalledApps(store, R"({"apps": [3]})"); }},
        {"the file is as it was", true, 0, [&] { return read() == "[]"; }},
        {"copy to a missing folder", -1, 1,
         [&] { return appcCopyInstance(store, "Nougat64", "Nowhere\\Nougat64_1"); }},
    });
}
