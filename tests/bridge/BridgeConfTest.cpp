// Fatal breaks of the listing, whose log lines show the order of its checks, and the commit's line.
#include "bridge/BridgeConf.h"

#include "support/FatalBreak.h"
#include "support/LogCapture.h"
#include "support/LogLines.h"
#include "support/TempFolder.h"
#include "support/TestHeaders.h"
#include "xpl/Xpl.h"

// Lists a file with one instance. A removed instance is listed again, because the file has been
// read again. The log goes to standard output. Arguments: the instance, its memory, "removed" or
// "kept".
SUBPROCESS(listsInstance) {
    const std::string& name = arguments.at(0);
    const TempFolder folder;
    const std::string prefix = "vtr.instance." + name + ".";
    const std::string path =
        folder.write("vantrel.conf", prefix + "ram=\"" + arguments.at(1) + "\"\n");
    if (xplLibInit(nullptr, "") != 0) return 1;
    if (confLibInit(confStore(), path, false) != 0) return 2;
    if (arguments.at(2) == "removed") {
        confDeleteInstance(confStore(), name);
        if (confReload(confStore()) != 0) return 3;
    }
    return bridgeInstancesJson(confStore()).empty() ? 4 : 0;
}

namespace {

// The error lines of a listing that ends its process.
Lines lastWords(const std::string& instance, const std::string& ram, const std::string& removed) {
    Lines lines = linesUntilBreak("listsInstance", {instance, ram, removed});
    const auto isNoError = [](const std::string& line) { return line.compare(0, 2, "E ") != 0; };
    lines.erase(std::remove_if(lines.begin(), lines.end(), isNoError), lines.end());
    return lines;
}

}  // namespace

TEST(BridgeInstancesTest, AnUnknownImageIsReportedBeforeAnythingIsRead) {
    const Lines unknown{"E UTL  utlGetImageTrait: Unknown image Pie64",
                        logged::fatalBreak("UTL", "Source/utl/Utl")};
    EXPECT_EQ(lastWords("Pie64_1", "4096", "kept"), unknown);
    EXPECT_EQ(lastWords("Pie64_1", "4096", "removed"), unknown) << "whose keys must not be read";
}

TEST(BridgeInstancesTest, AnInstanceThatIsBeingRemovedEndsTheListing) {
    EXPECT_EQ(
        lastWords("Nougat64_1", "4096", "removed"),
        (Lines{logged::by("", logged::keyRemoved("vtr.instance.Nougat64_1.device_profile_code")),
               logged::fatalBreak("CONF", "Source/conf/Conf")}));
}

TEST(BridgeInstancesTest, AMemoryThatIsNoNumberEndsTheListing) {
    EXPECT_EQ(lastWords("Nougat64", "abc", "kept"),
              (Lines{logged::by("", logged::numberInvalid("vtr.instance.Nougat64.ram", "abc")),
                     logged::fatalBreak("CONF", "Source/conf/Conf")}));
}

TEST(BridgeCommitTest, TheLineNamesTheExportAndThePathBeforeTheStoresOwn) {
    const TempFolder folder;
    ASSERT_EQ(confLibInit(confStore(), folder.write("vantrel.conf", "vtr.locale=\"a\"\n"), false),
              0);
    const LogCapture log;
    const std::string path = folder / "copy.conf";
    EXPECT_EQ(internal::bridgeConfCommitToFile(confStore(), path), 0);
    EXPECT_TRUE(folder.has("copy.conf"));
    ASSERT_FALSE(log.lines().empty());
    const LogCapture::Line first = log.lines().front();
    EXPECT_EQ(log.texts(XLOG_VERBOSE).front(), logged::committingForHost(path));
    EXPECT_EQ(first.function, "bridgeConfCommitToFile");
    EXPECT_EQ(first.file, "Source/bridge/Bridge");
}
