#include "support/LogCapture.h"
#include "support/ProductVersion.h"
#include "support/Subprocess.h"
#include "support/TestHeaders.h"
#include "utl/UtlImages.h"

TEST(UtlImages, BothImagesHaveTheirTraits) {
    for (const std::string bits : {"32", "64"}) {
        const UtlImageTrait& trait = utlGetImageTrait("Nougat" + bits);
        EXPECT_EQ(trait.name, "Nougat" + bits);
        EXPECT_EQ(trait.is64Bit, bits == "64");
        EXPECT_STREQ(trait.family, "Nougat");
        EXPECT_EQ(trait.displayName, "Nougat " + bits + "-bit");
        EXPECT_EQ(trait.shortName, "N" + bits);
        EXPECT_EQ(trait.count, 1);
    }
}

SUBPROCESS(looksUpImage) {
    std::optional<LogOff> off;
    if (arguments.back() == "silent") off.emplace();
    utlGetImageTrait(arguments[0]);
    return 0;
}

TEST(UtlImages, AnUnknownImageIsFatal) {
    for (const char* name : {"nougat64", "Nougat64_1", "", "Pie64"}) {
        const ChildResult result = runSubprocess("looksUpImage", {name});
        EXPECT_EQ(result.status, kFatalStatus) << name;
        EXPECT_NE(result.out.find("utlGetImageTrait"), std::string::npos) << name;
    }
    EXPECT_EQ(runSubprocess("looksUpImage", {"Nougat32"}).status, 0u);
}

TEST(UtlImages, TheImageOfAnInstanceEndsAtItsFirstUnderscore) {
    EXPECT_EQ(utlImageNameOfInstance("Nougat64_10"), "Nougat64");
    EXPECT_EQ(utlImageNameOfInstance("Nougat64"), "Nougat64");
    EXPECT_EQ(utlImageNameOfInstance("Nougat64_1_2"), "Nougat64");
    EXPECT_EQ(utlImageNameOfInstance("_1"), "");
}

TEST(UtlImages, AbiListsOfEveryMask) {
    const char* const wide[] = {"",          "x86",           "x64",           "x86,x64",
                                "arm",       "x86,arm",       "x64,arm",       "x86,x64,arm",
                                "arm64",     "x86,arm64",     "x64,arm64",     "x86,x64,arm64",
                                "arm,arm64", "x86,arm,arm64", "x64,arm,arm64", "x86,x64,arm,arm64"};
    const char* const narrow[] = {"", "x86", "", "x86", "arm", "x86,arm", "arm", "x86,arm",
                                  "", "x86", "", "x86", "arm", "x86,arm", "arm", "x86,arm"};
    for (int mask = 1; mask <= 15; ++mask) {
        EXPECT_EQ(utlGetAbiListFromAbiInt(mask, "Nougat64"), wide[mask]) << mask;
        EXPECT_EQ(utlGetAbiListFromAbiInt(mask, "Nougat32"), narrow[mask]) << mask;
    }
}

TEST(UtlImages, AMaskOutsideItsRangeIsLoggedAndListsNothing) {
    const LogCapture log;
    EXPECT_EQ(utlGetAbiListFromAbiInt(0, "Nougat64"), "");
    EXPECT_EQ(utlGetAbiListFromAbiInt(16, "Nougat32"), "");
    EXPECT_EQ(utlGetAbiListFromAbiInt(-1, "Pie"), "");
    EXPECT_EQ(log.texts(), (Lines{"E UTL Invalid ABI value 0 for imageName Nougat64",
                                  "E UTL Invalid ABI value 16 for imageName Nougat32",
                                  "E UTL Invalid ABI value -1 for imageName Pie"}));
}

SUBPROCESS(listsAbisOfUnknownImage) {
    utlGetAbiListFromAbiInt(2, "Pie64");
    return 0;
}

TEST(UtlImages, AnUnknownImageIsFatalForA64BitAbi) {
    EXPECT_EQ(runSubprocess("listsAbisOfUnknownImage").status, kFatalStatus);
    EXPECT_EQ(utlGetAbiListFromAbiInt(5, "Pie64"), "x86,arm");
}

TEST(UtlImages, VersionTextAndDigest) {
    EXPECT_STREQ(UTL_VERSION, kProductVersion);
    EXPECT_EQ(utlLibraryVersion(), std::string(kProductVersion) + "-orvane");
    // printf <version>-orvane | md5sum
    EXPECT_EQ(utlLibraryVersionDigest(), "fb1bb95464cc406c72b93ccb57d8656d");
}

TEST(UtlImages, TheDownloadLocationIsDigestFolderAndArchive) {
    EXPECT_EQ(utlImageDownloadLocation("Nougat64"),
              utlLibraryVersionDigest() + "/Android/Nougat64.zip");
}
