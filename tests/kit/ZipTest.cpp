#include "Zip.h"

#include <gtest/gtest.h>

#include <string>

using namespace std::string_literals;

TEST(KitZip, TheChecksumIsTheUsualOne) {
    EXPECT_EQ(zipChecksum(""), 0u);
    EXPECT_EQ(zipChecksum("123456789"), 0xCBF43926u);
    EXPECT_EQ(zipChecksum("\xff\x00\x80"s), 0xAC616EDFu);
}

TEST(KitZip, AnArchiveOfNothingIsItsEnd) {
    EXPECT_EQ(zipArchive({}), "PK\x05\x06"s + std::string(18, '\0'));
}

TEST(KitZip, AFileIsStoredBetweenItsHeaderAndTheDirectory) {
    const std::string fields =
        "\x14\0\0\x08\0\0\0\0\x21\0\x26\x39\xf4\xcb\x09\0\0\0\x09\0\0\0\x03\0\0\0"s;
    EXPECT_EQ(zipArchive({{"a/b", "123456789"}}),
              "PK\x03\x04"s + fields + "a/b123456789" + "PK\x01\x02\x14\0"s + fields +
                  std::string(14, '\0') + "a/b" +
                  "PK\x05\x06\0\0\0\0\x01\0\x01\0\x31\0\0\0\x2a\0\0\0\0\0"s);
}

TEST(KitZip, ASecondFileKnowsWhereItBegins) {
    const std::string archive = zipArchive({{"a", "xy"}, {"b", ""}});
    const std::size_t second = archive.find("PK\x03\x04", 1);
    ASSERT_EQ(second, 33u);
    const std::size_t entry = archive.find("PK\x01\x02", archive.find("PK\x01\x02") + 1);
    EXPECT_EQ(archive.substr(entry + 42, 4), "\x21\0\0\0"s);
}
