// A power failure during the app cache's save leaves the old file or the new one.
#include "PowerFailure.h"
#include "appc/Appc.h"
#include "appc/AppcStore.h"
#include "support/LogCapture.h"
#include "support/Platform.h"
#include "support/TempFolder.h"
#include "support/TestHeaders.h"
#include "xpl/Xfile.h"

namespace {

constexpr const char* kInstance = "Nougat64";
constexpr int kApps = 200;

class SavePowerFailureTest : public ::testing::Test {
 protected:
    SavePowerFailureTest() {
        data.makeFolder(std::string("Engine\\") + kInstance);
        EXPECT_EQ(appcLibInit(store, kInstance), 0);
        EXPECT_EQ(save(1), 0);
        path = store.instanceDir(kInstance) + "AppCache.json";
    }

    // Saves apps that all have that version.
    XErr save(std::int32_t versionCode) {
        const std::lock_guard<AppcLock> guard(store.lock);
        store.apps.clear();
        for (int i = 0; i < kApps; ++i) {
            store.apps["com.app" + std::to_string(i)] = {"Main", "App", versionCode, "x", "icon"};
        }
        return appcSaveToFile(store);
    }

    void expectSafeSave(DiskContents before) {
        before[path] = readBytes(path);
        record();
        ASSERT_EQ(save(++saves), 0);
        const std::string after = readBytes(path);
        ASSERT_TRUE(after != before[path]);
        expectOldOrNew(recorded(), before, path, after);
    }

    TempFolder data;
    LogCapture log;
    AppcStore store{appcDiskFiles(), data.path() + "\\", data.path() + "\\Shared\\"};
    std::string path;
    int saves = 1;
};

}  // namespace

TEST_F(SavePowerFailureTest, APowerFailureLeavesTheOldCacheOrTheNewOne) { expectSafeSave({}); }

TEST_F(SavePowerFailureTest, AnOldTemporaryFileDoesNoHarm) {
    const std::string temporary = path + "." + std::to_string(ownProcessId()) + "-temp";
    const std::string left(100'000, 'x');
    writeBytes(temporary, left);
    expectSafeSave({{temporary, left}});
    EXPECT_NE(xfileExists(temporary), XERR_SUCCESS);
}
