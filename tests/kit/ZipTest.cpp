#include "Zip.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

namespace {

// A literal with its NULs, without the last one.
template <std::size_t kSize>
std::string bytes(const char (&text)[kSize]) {
    return {text, kSize - 1};
}

}  // namespace

TEST(KitZip, TheChecksumIsTheUsualOne) {
    EXPECT_EQ(zipChecksum(""), 0u);
    EXPECT_EQ(zipChecksum("123456789"), 0xCBF43926u);
    EXPECT_EQ(zipChecksum(bytes("\xff\x00\x80")), 0xAC616EDFu);
}

TEST(KitZip, AnArchiveOfNothingIsItsEnd) {
    EXPECT_EQ(zipArchive({}), bytes("PK\x05\x06") + std::string(18, '\0'));
}

TEST(KitZip, AFileIsStoredBetweenItsHeaderAndTheDirectory) {
    const std::string fields =
        bytes("\x14\0\0\x08\0\0\0\0\x21\0\x26\x39\xf4\xcb\x09\0\0\0\x09\0\0\0\x03\0\0\0");
    EXPECT_EQ(zipArchive({{"a/b", "123456789"}}),
              bytes("PK\x03\x04") + fields + "a/b123456789" + bytes("PK\x01\x02\x14\0") + fields +
                  std::string(14, '\0') + "a/b" +
                  bytes("PK\x05\x06\0\0\0\0\x01\0\x01\0\x31\0\0\0\x2a\0\0\0\0\0"));
}

TEST(KitZip, ASecondFileKnowsWhereItBegins) {
    const std::string archive = zipArchive({{"a", "xy"}, {"b", ""}});
    const std::size_t second = archive.find("PK\x03\x04", 1);
    ASSERT_EQ(second, 33u);
    const std::size_t entry = archive.find("PK\x01\x02", archive.find("PK\x01\x02") + 1);
    EXPECT_EQ(archive.substr(entry + 42, 4), bytes("\x21\0\0\0"));
}
