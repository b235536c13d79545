#include <clocale>
#include <cstdarg>

#include "support/TestHeaders.h"
#include "xpl/XlogLine.h"

namespace {

const XlogLineHeader kHeader{"2024-03-07 14:05:09.042+0100", 42, "7", "CONF", "Helper_bridge", 'I'};
const std::string kHeaderText = "2024-03-07 14:05:09.042+0100 42    7     CONF   Helper_bridge I: ";

std::string format(const XlogLineHeader& header, const XlogLineSite& site, const char* text, ...)
    XPRINTF_LIKE(3, 4);

std::string format(const XlogLineHeader& header, const XlogLineSite& site, const char* text, ...) {
    XlogLineBuffer buffer;
    std::va_list arguments;
    va_start(arguments, text);
    const std::size_t length = xlogFormatLine(buffer, header, site, text, arguments);
    va_end(arguments);
    EXPECT_EQ(buffer[length], '\0');
    return {buffer.data(), length};
}

// The "C" locale, in which no runtime formats characters outside its code page.
class PlainLocale {
 public:
    PlainLocale() { std::setlocale(LC_CTYPE, "C"); }
    ~PlainLocale() { std::setlocale(LC_CTYPE, before_.c_str()); }
    PlainLocale(const PlainLocale&) = delete;
    PlainLocale& operator=(const PlainLocale&) = delete;

 private:
    const std::string before_ = std::setlocale(LC_CTYPE, nullptr);
};

}  // namespace

TEST(XlogLine, HeaderThenMessageThenLineFeed) {
    EXPECT_EQ(format(kHeader, {}, "%s = %d", "x", 5), kHeaderText + "x = 5\n");
}

TEST(XlogLine, WideFieldsPushTheRest) {
    EXPECT_EQ(format({"T", 1234567, "890123", "LONGTAG", "", 'E'}, {}, "m"),
              "T 1234567 890123 LONGTAG  E: m\n");
}

TEST(XlogLine, AMessageThatEndsInALineFeedGetsNoSecondOne) {
    EXPECT_EQ(format(kHeader, {}, "m\n"), kHeaderText + "m\n");
}

TEST(XlogLine, AnEmptyMessageIsALine) {
    EXPECT_EQ(format(kHeader, {}, "%s", ""), kHeaderText + "\n");
}

TEST(XlogLine, TheSourceLocationPrecedesTheMessage) {
    EXPECT_EQ(format(kHeader, {"File", "function", 12}, "m"),
              kHeaderText + "File function 12 | m\n");
    EXPECT_EQ(format(kHeader, {nullptr, "function", {}}, "m"), kHeaderText + "function m\n");
    EXPECT_EQ(format(kHeader, {nullptr, nullptr, 0}, "m"), kHeaderText + "0 | m\n");
}

TEST(XlogLine, ALongMessageIsCutAt4093Characters) {
    const std::string line = format(kHeader, {}, "%s", std::string(5000, 'x').c_str());
    EXPECT_EQ(line.size(), 4094u);
    EXPECT_EQ(line, kHeaderText + std::string(4093 - kHeaderText.size(), 'x') + "\n");
}

TEST(XlogLine, TheLimitIsReachedAt4094Characters) {
    const auto lineOf = [](std::size_t total) {
        return format(kHeader, {}, "%s", std::string(total - kHeaderText.size(), 'x').c_str());
    };
    EXPECT_EQ(lineOf(4093).size(), 4094u);
    EXPECT_EQ(lineOf(4094).size(), 4094u) << "one character is lost";
    EXPECT_EQ(lineOf(4092).size(), 4093u);
}

TEST(XlogLine, AHeaderThatFillsTheLineLeavesNoMessage) {
    const std::string client(5000, 'c');
    const std::string line = format({"T", 1, "2", "TAG", client.c_str(), 'I'}, {}, "message");
    EXPECT_EQ(line.size(), 4094u);
    EXPECT_EQ(line.find("message"), std::string::npos);
    EXPECT_EQ(line.substr(4090), "ccc\n");
}

TEST(XlogLine, AMessageThatCannotBeFormattedIsPaddedWithBlanks) {
    const std::string line = format(kHeader, {}, "before %ls", L"\xD800");
    EXPECT_EQ(line.find('\0'), std::string::npos);
    EXPECT_EQ(line.back(), '\n');
    EXPECT_EQ(line.rfind(kHeaderText, 0), 0u);
}

TEST(XlogLine, ThePartThatTheFormatterWroteIsShown) {
    const PlainLocale locale;
    ASSERT_LT(std::snprintf(nullptr, 0, "%ls", L"\xD800"), 0);
    for (const std::string& before : {std::string("before "), std::string(5000, 'x')}) {
        std::string rest(4095 - kHeaderText.size(), ' ');
        std::snprintf(rest.data(), rest.size(), "%s%ls", before.c_str(), L"\xD800");
        std::replace(rest.begin(), rest.end(), '\0', ' ');
        rest.resize(4093 - kHeaderText.size());
        EXPECT_EQ(format(kHeader, {}, "%s%ls", before.c_str(), L"\xD800"),
                  kHeaderText + rest + "\n");
    }
}
