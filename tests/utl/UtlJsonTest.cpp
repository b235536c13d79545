#include "support/TestHeaders.h"
#include "utl/UtlJson.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <climits>

namespace {

// The expected array of objects with a text and its length, written by Qt.
std::string asQtWrites(const std::vector<std::string>& texts) {
    QJsonArray array;
    for (const std::string& text : texts) {
        array.append(QJsonObject{{"number", static_cast<int>(text.size())},
                                 {"text", QString::fromUtf8(text.data(), int(text.size()))}});
    }
    return QJsonDocument(array).toJson().toStdString();
}

std::string written(const std::vector<std::string>& texts) {
    UtlJsonArray array(16);
    for (const std::string& text : texts) {
        array.object();
        array.member("number", static_cast<std::int32_t>(text.size()));
        array.member("text", text);
    }
    return array.take();
}

}  // namespace

TEST(UtlJson, WithoutObjectsTheArrayHasTwoLines) {
    EXPECT_EQ(UtlJsonArray(0).take(), "[\n]\n");
    EXPECT_EQ(asQtWrites({}), "[\n]\n");
}

TEST(UtlJson, ObjectsAreWrittenByteForByteAsQtDoes) {
    std::string controls;
    for (char c = 0; c < 0x20; ++c) controls += c;
    const std::vector<std::string> texts{"",       "plain",   "\"quoted\" \\ /",  controls,
                                         "\x7F é", "日本 🎮", "broken \xC3 \xFF", "\xED\xA0\x80"};
    for (const std::string& text : texts) EXPECT_EQ(written({text}), asQtWrites({text}));
    EXPECT_EQ(written(texts), asQtWrites(texts));
}

TEST(UtlJson, NumbersReachTheEndsOf32Bits) {
    UtlJsonArray array(0);
    array.object();
    array.member("a", INT32_MIN);
    array.member("b", INT32_MAX);
    EXPECT_EQ(array.take(),
              "[\n    {\n        \"a\": -2147483648,\n        \"b\": 2147483647\n    }\n]\n");
}

TEST(UtlJson, ALengthThatQtCannotHoldIsThrownAndNotCut) {
    EXPECT_EQ(utlJsonLength(0), 0);
    EXPECT_EQ(utlJsonLength(INT_MAX), INT_MAX);
    for (const std::size_t length :
         {std::size_t{INT_MAX} + 1, std::size_t{0x100000001}, SIZE_MAX}) {
        EXPECT_THROW(utlJsonLength(length), std::length_error) << length;
    }
}
