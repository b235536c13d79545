// The documented ways to load the library from a folder with Qt beside it, and the host's locale.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "support/ChildProcess.h"
#include "support/Platform.h"
#include "support/TempFolder.h"

namespace fs = std::filesystem;

namespace {

// kit_loader.exe is in a folder without Qt.
std::string loader() {
    const std::string products = productFile("");
    return products.substr(0, products.size() - std::string("bin\\").size()) +
           "kit\\kit_loader.exe";
}

// The three DLLs in a folder whose name has a blank and letters outside ASCII.
class LoadTest : public ::testing::Test {
 protected:
    LoadTest() {
        folder.makeFolder(
            "Pr\xC3\xBC"
            "f \xD0\xB6 \xE6\x97\xA5");
        dll = folder /
              "Pr\xC3\xBC"
              "f \xD0\xB6 \xE6\x97\xA5\\";
        for (const char* name : {"Qt5Core.dll", "Qt5Network.dll", "QX-Bridge.dll"}) {
            fs::copy_file(systemPath(productFile(name)), systemPath(dll + name));
        }
        dll += "QX-Bridge.dll";
    }

    std::string load(const std::string& way) const {
        return runChild(loader(), {"load", way, dll}).out;
    }

    std::string playLocale(const std::string& name, const std::string& order,
                           const std::string& file) const {
        const ChildResult result = runChild(loader(), {"locale", name, order, dll, folder / file});
        EXPECT_EQ(result.status, 0u) << result.out << result.err;
        return result.out;
    }

    TempFolder folder;
    std::string dll;
};

constexpr const char* kLoaded = "load 0\r\ninit 0\r\nfini 0\r\n";

}  // namespace

TEST_F(LoadTest, LoadLibraryAloneDoesNotFindQt) { EXPECT_EQ(load("plain"), "load 126\r\n"); }

TEST_F(LoadTest, TheAlteredSearchPathFindsQt) { EXPECT_EQ(load("altered"), kLoaded); }

TEST_F(LoadTest, AnAddedDirectoryFindsQt) { EXPECT_EQ(load("directory"), kLoaded); }

TEST_F(LoadTest, TheHostsLocaleChangesNoByteOfTheData) {
    const std::string expected = playLocale("C", "before", "plain");
    const std::string file = folder.read("plain");
    ASSERT_NE(file.find("vtr.instance.Nougat64.ram=\"123456789\"\n"), std::string::npos);
    ASSERT_EQ(expected.rfind("locale set\r\ninit 0\r\n", 0), 0u) << expected;
    const std::string rest = expected.substr(std::string("locale set\r\ninit 0\r\n").size());
    for (const char* name : {"de-DE", "ja-JP", "tr-TR"}) {
        for (const char* order : {"before", "after"}) {
            const std::string out = playLocale(name, order, "file");
            EXPECT_NE(out.find("locale set\r\n"), std::string::npos) << name;
            EXPECT_EQ(out.substr(out.size() - rest.size()), rest) << name << ' ' << order;
            EXPECT_EQ(folder.read("file"), file) << name << ' ' << order;
        }
    }
}
