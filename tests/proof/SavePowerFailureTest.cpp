// The app cache's save and a power failure: the cache's file is the old one or the new one, whole.
#include "PowerFailure.h"
#include "appc/Appc.h"
#include "appc/AppcStore.h"
#include "support/LogCapture.h"
#include "support/Platform.h"
#include "support/TempFolder.h"
#include "support/TestHeaders.h"
#include "xpl/Xfile.h"

namespace {

using Losses = std::set<std::string>;

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

    // One save over the disk as it is, and what a power failure can do to it.
    void expectOldOrNew(DiskContents before) {
        before[path] = readBytes(path);
        record();
        ASSERT_EQ(save(++saves), 0);
        const std::vector<FileOperation> operations = recorded();
        const std::string after = readBytes(path);
        ASSERT_TRUE(after != before[path]);
        ASSERT_TRUE(contentBehind(operations, before, path) == after);
        EXPECT_EQ(harmfulLosses(operations, before, path, after), Losses{});
        // The save writes one piece. This is what it would risk without its flush.
        EXPECT_EQ(harmfulLosses(withoutFlushes(operations), before, path, after),
                  (Losses{kLossGone, kLossHalf, kLossZeros, kLossGarbage}));
    }

    TempFolder data;
    LogCapture log;
    AppcStore store{appcDiskFiles(), data.path() + "\\", data.path() + "\\Shared\\"};
    std::string path;
    int saves = 1;
};

}  // namespace

TEST_F(SavePowerFailureTest, APowerFailureLeavesTheOldCacheOrTheNewOne) { expectOldOrNew({}); }

TEST_F(SavePowerFailureTest, ATemporaryFileThatWasLeftIsNoDanger) {
    const std::string temporary = path + "." + std::to_string(ownProcessId()) + "-temp";
    const std::string left(100'000, 'x');
    writeBytes(temporary, left);
    expectOldOrNew({{temporary, left}});
    EXPECT_NE(xfileExists(temporary), XERR_SUCCESS);
}
