#include "appc/AppcJson.h"

#include <QJsonDocument>
#include <QJsonObject>

#include "AppcFixture.h"

namespace {

// The apps of an array, which must be valid.
AppcApps appsOf(const std::string& text) {
    QJsonArray array;
    AppcApps apps;
    EXPECT_TRUE(appcParseArray(text, array)) << text;
    EXPECT_EQ(appcReadApps(array, apps).kind, AppcFlaw::None) << text;
    return apps;
}

// The version code of an element that has this number.
std::int32_t codeOf(const std::string& number) {
    Element element;
    element.versionCode = number;
    return appsOf(arrayOf({element.text()})).at("com.a").versionCode;
}

// The label of an element that has this text, which is JSON without its quotes.
std::string labelOf(const std::string& text) {
    Element element;
    element.appLabel = '"' + text + '"';
    return appsOf(arrayOf({element.text()})).at("com.a").appLabel;
}

bool isArray(std::string_view text) {
    QJsonArray array;
    return appcParseArray(text, array);
}

// The array as Qt writes it.
std::string byQt(const AppcApps& apps, const char* iconKey, const std::string& folder) {
    QJsonArray array;
    for (const auto& [package, app] : apps) {
        QJsonObject object;
        object["package"] = QString::fromStdString(package);
        object["activity"] = QString::fromStdString(app.activity);
        object["appLabel"] = QString::fromStdString(app.appLabel);
        object["versionCode"] = app.versionCode;
        object["versionName"] = QString::fromStdString(app.versionName);
        object[iconKey] = QString::fromStdString(folder + app.iconFileName);
        array.append(object);
    }
    return QJsonDocument(array).toJson().toStdString();
}

// The file of an app with this label, escaped as in JSON.
std::string fileWithLabel(const std::string& text) {
    return fileOf({{"com.a", "com.a.Main", text, 1, "1.0"}});
}

std::string written(const std::string& label) {
    return appcFileText({{"com.a", {"com.a.Main", label, 1, "1.0", "com.a.png"}}});
}

}  // namespace

TEST(AppcJson, NumbersAreCutAndSaturate) {
    struct {
        const char* text;
        std::int32_t code;
    } const cases[] = {{"0", 0},
                       {"-0", 0},
                       {"1e3", 1000},
                       {"1E+3", 1000},
                       {"1.5", 1},
                       {"-1.5", -1},
                       {"0.9999999", 0},
                       {"-0.9999999", 0},
                       {"2147483647", 2147483647},
                       {"2147483647.9", 2147483647},
                       {"2147483648", 2147483647},
                       {"-2147483648", INT32_MIN},
                       {"-2147483648.9", INT32_MIN},
                       {"-2147483649", INT32_MIN},
                       {"4294967296", 2147483647},
                       {"9223372036854775807", 2147483647},
                       {"-9223372036854775808", INT32_MIN},
                       {"18446744073709551616", 2147483647},
                       {"1e300", 2147483647},
                       {"-1e300", INT32_MIN},
                       {"1e-300", 0}};
    for (const auto& [text, code] : cases) EXPECT_EQ(codeOf(text), code) << text;
}

TEST(AppcJson, NumbersBeyondADoubleMakeNoDocument) {
    Element element;
    element.versionCode = "1e400";
    EXPECT_FALSE(isArray(arrayOf({element.text()})));
}

TEST(AppcJson, TextsAreReadAsTheyAre) {
    EXPECT_EQ(labelOf(""), "");
    EXPECT_EQ(labelOf("é 日本 🎮"), "é 日本 🎮");
    EXPECT_EQ(labelOf(R"(\u00e9 \ud83c\udfae)"), "é 🎮");
    EXPECT_EQ(labelOf(R"(\" \\ \/ \b\f\n\r\t\u001f)"), "\" \\ / \b\f\n\r\t\x1F");
    EXPECT_EQ(labelOf(R"(a\u0000b)"), std::string("a\0b", 3));
    EXPECT_EQ(labelOf("x\xEF\xBB\xBF"), "x\xEF\xBB\xBF") << "a mark inside a text";
    EXPECT_EQ(labelOf("\xEF\xBB\xBFx"), "x") << "a mark at the start of a text goes";
}

TEST(AppcJson, HalfASurrogatePairBecomesAQuestionMark) {
    EXPECT_EQ(labelOf(R"(a\ud83cb)"), "a?b");
    EXPECT_EQ(labelOf(R"(a\udfaeb)"), "a?b");
}

TEST(AppcJson, OnlyAnArrayIsAnArray) {
    EXPECT_TRUE(isArray("[]"));
    EXPECT_TRUE(isArray(" \t\r\n[ \n] \n"));
    EXPECT_TRUE(isArray("\xEF\xBB\xBF[]")) << "a byte order mark";
    for (const char* text :
         {"", " ", "{}", "null", "true", "1", "\"[]\"", "[", "]", "[]x", "[][]"}) {
        EXPECT_FALSE(isArray(text)) << text;
    }
    for (const char* text : {"[,]", "[1,]", "[01]", "['a']", "[nan]", "// x\n[]", "[\"\\u12\"]"}) {
        EXPECT_FALSE(isArray(text)) << text;
    }
    const char* const bytes[] = {"[\"\xFF\"]", "[\"\xC0\x80\"]", "[\"\xED\xA0\x80\"]",
                                 "\xFF\xFE[\0]\0", "\xEF\xBB[]"};
    for (const char* text : bytes) EXPECT_FALSE(isArray(text)) << text;
    EXPECT_FALSE(isArray(std::string_view("[]\0", 3)));
}

TEST(AppcJson, TextsAreReadTolerantly) {
    EXPECT_EQ(labelOf("a\tb"), "a\tb") << "a control character without its escape";
    EXPECT_EQ(labelOf(R"(\x\')"), "x'") << "an escape that JSON does not have";
}

TEST(AppcJson, NestingHasALimit) {
    EXPECT_TRUE(isArray(std::string(500, '[') + std::string(500, ']')));
    EXPECT_FALSE(isArray(std::string(1'000'000, '[') + std::string(1'000'000, ']')));
}

TEST(AppcJson, TheLastOfTwoElementsOfOnePackageCounts) {
    Element second;
    second.appLabel = R"("B")";
    const AppcApps apps = appsOf(arrayOf({Element().text(), second.text()}));
    ASSERT_EQ(apps.size(), 1u);
    EXPECT_EQ(apps.at("com.a").appLabel, "B");
}

TEST(AppcJson, TheLastOfTwoEqualKeysCounts) {
    const AppcApps apps = appsOf(R"([{"package":"a","activity":"","appLabel":"x","appLabel":"y",)"
                                 R"("versionCode":1,"versionName":""}])");
    EXPECT_EQ(apps.at("a").appLabel, "y");
}

TEST(AppcJson, OtherKeysAreIgnoredAndTheIconIsThePackages) {
    const AppcApps apps = appsOf(R"([{"iconFileName":"other.png","package":"","activity":"m",)"
                                 R"("appLabel":"l","versionCode":-7,"versionName":"v","x":[{}]}])");
    EXPECT_EQ(apps.at(""), (AppcApp{"m", "l", -7, "v", ".png"}));
}

TEST(AppcJson, TheSyncListIsAMemberOfTheTopLevelObject) {
    QJsonArray array;
    EXPECT_TRUE(appcParseSyncList(R"({"apps": [], "x": 1})", array));
    for (const char* text :
         {"", "[]", "{}", R"({"apps": {}})", R"({"apps": null})", R"({"apps": "[]"})",
          R"({"Apps": []})", R"([{"apps": []}])", R"({"apps": [])"}) {
        EXPECT_FALSE(appcParseSyncList(text, array)) << text;
    }
}

TEST(AppcJson, NoAppIsAnArrayOnTwoLines) {
    EXPECT_EQ(appcFileText({}), "[\n]\n");
    EXPECT_EQ(appcListingText({}, "C:\\x"), "[\n]\n");
}

TEST(AppcJson, MembersAreIndentedByFourSpacesInOrderOfTheirKeys) {
    const AppcApps apps{{"com.b", {"com.b.Main", "B", -5, "2.0", "com.b.png"}},
                        {"com.a", {"com.a.Main", "A", 2147483647, "", "com.a.png"}}};
    EXPECT_EQ(appcFileText(apps), R"([
    {
        "activity": "com.a.Main",
        "appLabel": "A",
        "iconFileName": "com.a.png",
        "package": "com.a",
        "versionCode": 2147483647,
        "versionName": ""
    },
    {
        "activity": "com.b.Main",
        "appLabel": "B",
        "iconFileName": "com.b.png",
        "package": "com.b",
        "versionCode": -5,
        "versionName": "2.0"
    }
]
)");
    EXPECT_EQ(appcListingText({*apps.begin()}, "D:\\Data\\Engine/Jeux é/AppCache/"),
              listingOf({{"com.a", "com.a.Main", "A", 2147483647, ""}},
                        R"(D:\\Data\\Engine/Jeux é/AppCache/)"));
}

TEST(AppcJson, TextsAreEscapedAsLittleAsPossible) {
    EXPECT_EQ(written("say \"hi\" \\ /"), fileWithLabel(R"(say \"hi\" \\ /)"));
    EXPECT_EQ(written("\b\f\n\r\t"), fileWithLabel(R"(\b\f\n\r\t)"));
    EXPECT_EQ(written("\x01\x1F\x7F"), fileWithLabel("\\u0001\\u001f\x7F"));
    EXPECT_EQ(written(std::string("a\0b", 3)), fileWithLabel(R"(a\u0000b)"));
    EXPECT_EQ(written("é\xE2\x80\xA8日本🎮"), fileWithLabel("é\xE2\x80\xA8日本🎮"));
    EXPECT_EQ(written("\xEF\xBF\xBF"), fileWithLabel("\xEF\xBF\xBF"));
}

TEST(AppcJson, BytesThatAreNotUtf8AreReplaced) {
    EXPECT_EQ(written("a\xFFz"), fileWithLabel("a\xEF\xBF\xBDz"));
    EXPECT_EQ(written("\xEF\xBB\xBFx"), fileWithLabel("x")) << "a mark at the start of a text goes";
}

TEST(AppcJson, EveryCharacterIsWrittenAsQtDoes) {
    AppcApps apps;
    const auto add = [&apps](const std::string& text) {
        apps[text + "p"] = {text, text + text, 0, "x" + text, appcIconFileName(text + "p")};
    };
    for (unsigned code = 0; code < 0x110000; code += code < 0x3000 ? 1 : 0x1F) {
        if (code >= 0xD800 && code < 0xE000) continue;
        const char32_t character = code;
        add(QString::fromUcs4(&character, 1).toStdString());
    }
    for (unsigned byte = 0x80; byte < 0x100; ++byte) add(std::string(1, static_cast<char>(byte)));
    EXPECT_GT(apps.size(), 0x3000u);
    EXPECT_TRUE(appcFileText(apps) == byQt(apps, "iconFileName", ""));
    EXPECT_TRUE(appcListingText(apps, "\xC3") == byQt(apps, "iconFilePath", "\xC3"));
}

TEST(AppcJson, RandomBytesAreWrittenAsQtDoes) {
    std::mt19937 random(5);
    const auto text = [&random] {
        // Mostly bytes that have a meaning in UTF-8 or JSON.
        static constexpr char literal[] =
            "\0\x01\x1F\"\\/azé\xC0\xC3\xE2\xED\xEF\xF0\xF4\xF8\xFF\x80\x9F\xA0\xBB\xBF\x8F\x90";
        constexpr std::string_view bytes(literal, sizeof literal - 1);
        std::string result;
        for (unsigned i = random() % 12; i > 0; --i) result += bytes[random() % bytes.size()];
        return result;
    };
    for (int round = 0; round < 20'000; ++round) {
        const std::string package = text();
        const AppcApps apps{{package,
                             {text(), text(), static_cast<std::int32_t>(random()), text(),
                              appcIconFileName(package)}}};
        const std::string folder = text();
        ASSERT_EQ(appcFileText(apps), byQt(apps, "iconFileName", ""));
        ASSERT_EQ(appcListingText(apps, folder), byQt(apps, "iconFilePath", folder));
    }
}

TEST(AppcJson, WhatIsWrittenIsReadBack) {
    AppcApps apps;
    for (const std::string& text :
         {std::string("plain"), std::string("\"\\\b\x7F é 日本 🎮"), std::string("a\0b", 3)}) {
        apps[text] = {text + "1", text + "2", -1, text + "3", appcIconFileName(text)};
    }
    QJsonArray array;
    ASSERT_TRUE(appcParseArray(appcFileText(apps), array));
    AppcApps again;
    EXPECT_EQ(appcReadApps(array, again).kind, AppcFlaw::None);
    EXPECT_TRUE(again == apps);
}
