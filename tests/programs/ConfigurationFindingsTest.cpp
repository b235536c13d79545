// Problems that the doctor finds in the text of a configuration.
#include "doctor/ConfigurationFindings.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

namespace {

using Lines = std::vector<std::string>;

Lines look(const std::string& content) {
    Lines lines;
    for (const Finding& finding : configurationFindings(content)) {
        EXPECT_EQ(finding.level, FindingLevel::Problem);
        EXPECT_EQ(finding.check, "configuration");
        lines.push_back(finding.found + "; " + finding.todo);
    }
    return lines;
}

}  // namespace

TEST(ConfigurationFindings, AValidFileHasNone) {
    EXPECT_EQ(look(""), Lines{});
    EXPECT_EQ(look("vtr.locale=\"fr\"\nvtr.next_vm_id=\"3\"\nvtr.instance.Nougat64.ram=\"1\"\n"
                   "vtr.feature.macros=\"\"\nvtr.locale=\"a=\\\"b\"\n"),
              Lines{});
    EXPECT_EQ(look("vtr.locale=\"no line feed at the end\""), Lines{});
}

TEST(ConfigurationFindings, InvalidLinesHaveTheirNumber) {
    EXPECT_EQ(look("vtr.locale=\"fr\"\nnonsense\n"),
              Lines{"line 2: not key=\"value\": the library ignores the rest of the file; correct "
                    "or remove the line"});
    EXPECT_EQ(look("vtr.locale=\n"), Lines{"line 1: not key=\"value\": the library ignores the "
                                           "rest of the file; correct or remove the line"});
    EXPECT_EQ(look("vtr.locale=\"fr\"\n\nvtr.next_vm_id=\"x\"\n"),
              (Lines{"line 2: empty line: the library ignores the rest of the file; correct or "
                     "remove the line",
                     "line 3: vtr.next_vm_id is not of type i32: \"x\": front ends end when they "
                     "read it; bridgectl conf unset vtr.next_vm_id"}));
    EXPECT_EQ(look("vtr.locale=fr\n"),
              Lines{"line 1: value without quotes: its first and last characters are lost; put the "
                    "value in double quotes"});
}

TEST(ConfigurationFindings, AByteOrderMarkIsNamed) {
    EXPECT_EQ(look("\xEF\xBB\xBFvtr.locale=\"fr\"\n"),
              Lines{"byte order mark: the library ignores the file; save the file as UTF-8 without "
                    "a byte order mark"});
}

TEST(ConfigurationFindings, CarriageReturnsAreNamed) {
    EXPECT_EQ(look("vtr.locale=\"fr\"\r\n"),
              Lines{"line 1: ends with CR LF: the value includes the closing quote; save the file "
                    "with LF line ends"});
}

TEST(ConfigurationFindings, OnlyLinesThatAreTooLongAreNamed) {
    const std::string key = "vtr.locale=\"";
    const auto line = [&key](std::size_t size) {
        return key + std::string(size - key.size() - 1, 'x') + "\"\n";
    };
    EXPECT_EQ(look(line(4094)), Lines{});
    const Lines late{
        "line 1: 4095 bytes or more: no commit succeeds; set the key to a shorter value"};
    EXPECT_EQ(look(line(4095)), late);
    EXPECT_EQ(look(line(4096)), late);
    EXPECT_EQ(look(line(4097)), Lines{"line 1: more than 4096 bytes: the library ignores the rest "
                                      "of the file; shorten or remove the line"});
}

TEST(ConfigurationFindings, UnknownKeysHaveTheirNearest) {
    EXPECT_EQ(look("vtr.lcoale=\"fr\"\nvtr.nothing=\"1\"\nother=\"1\"\n"),
              (Lines{"line 1: unknown key vtr.lcoale: the library ignores the rest of the file; "
                     "did you mean vtr.locale?",
                     "line 2: unknown key vtr.nothing: the library ignores the rest of the file; "
                     "remove the line",
                     "line 3: unknown key other: the library ignores the rest of the file; remove "
                     "the line"}));
}

TEST(ConfigurationFindings, AnInstanceOfAnUnknownImageIsNamedOnce) {
    EXPECT_EQ(look("vtr.instance.Pie64_1.ram=\"1\"\nvtr.instance.Pie64_1.dpi=\"1\"\n"),
              Lines{"line 1: instance Pie64_1 has an unknown image: front ends end when they list "
                    "the instances; bridgeadm remove-instance Pie64_1"});
}

TEST(ConfigurationFindings, ANulCharacterInAKeyIsNamed) {
    const std::string key = "vtr.instance.Nougat64" + std::string(1, '\0') + ".ram";
    EXPECT_EQ(look(key + "=\"1\"\n"), Lines{"line 1: NUL character in the key " + key +
                                            ": no front end can read it; remove the line"});
}

TEST(ConfigurationFindings, ValuesThatCannotBeReadAreNamed) {
    EXPECT_EQ(look("vtr.feature.rooting=\"maybe\"\nvtr.instance.Nougat64.ram=\"many\"\n"),
              (Lines{"line 1: vtr.feature.rooting is not of type bool: \"maybe\": front ends end "
                     "when they read it; bridgectl conf unset vtr.feature.rooting",
                     "line 2: vtr.instance.Nougat64.ram is not of type i32: \"many\": front ends "
                     "end when they read it; bridgectl conf set vtr.instance.Nougat64.ram 0"}));
}
