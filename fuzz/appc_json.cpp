// App lists. The library and the simple reader read the same apps. The written file has the same
// bytes as Qt's, and reads back as the same apps.
#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <tuple>

#include "Check.h"
#include "appc/AppcJson.h"

namespace {

bool areSame(const AppcApps& a, const AppcApps& b) {
    const auto tied = [](const AppcApps::value_type& entry) {
        const AppcApp& app = entry.second;
        return std::tie(entry.first, app.activity, app.appLabel, app.versionCode, app.versionName,
                        app.iconFileName);
    };
    return a.size() == b.size() &&
           std::equal(a.begin(), a.end(), b.begin(),
                      [&tied](const auto& x, const auto& y) { return tied(x) == tied(y); });
}

QJsonValue jsonOf(const std::string& text) { return QString::fromStdString(text); }

// The text that Qt writes for a cache file or a listing.
std::string textByQt(const AppcApps& apps, const char* iconKey, const std::string& folder) {
    QJsonArray array;
    for (const auto& [package, app] : apps) {
        array.append(QJsonObject{{"package", jsonOf(package)},
                                 {"activity", jsonOf(app.activity)},
                                 {"appLabel", jsonOf(app.appLabel)},
                                 {"versionCode", app.versionCode},
                                 {"versionName", jsonOf(app.versionName)},
                                 {iconKey, jsonOf(folder + app.iconFileName)}});
    }
    return QJsonDocument(array).toJson().toStdString();
}

struct Reading {
    AppcFlaw flaw;
    AppcApps apps;
};

std::string plainText(const QJsonValue& value) { return value.toString().toStdString(); }

std::int32_t plainVersion(const QJsonValue& value) {
    using Limits = std::numeric_limits<std::int32_t>;
    return static_cast<std::int32_t>(
        std::clamp<double>(value.toDouble(), Limits::min(), Limits::max()));
}

// The first required member that is missing or has another type.
AppcFlaw plainFlaw(const QJsonObject& object) {
    struct Wanted {
        const char* key;
        QJsonValue::Type type;
        const char* typeName;
    };
    for (const auto& [key, type, typeName] :
         {Wanted{"package", QJsonValue::String, "String"},
          Wanted{"activity", QJsonValue::String, "String"},
          Wanted{"appLabel", QJsonValue::String, "String"},
          Wanted{"versionCode", QJsonValue::Double, "Double"},
          Wanted{"versionName", QJsonValue::String, "String"}}) {
        const QJsonValue value = object[QString(key)];
        if (value.isUndefined() || value.isNull()) return {AppcFlaw::NotDefined, key};
        if (value.type() != type) return {AppcFlaw::InvalidType, key, value.type(), typeName};
    }
    return {};
}

Reading readPlainly(const QJsonArray& array) {
    AppcApps apps;
    for (int i = 0; i < array.size(); ++i) {
        if (array.at(i).type() != QJsonValue::Object) return {{AppcFlaw::NotAnObject}, apps};
        const QJsonObject object = array.at(i).toObject();
        const AppcFlaw flaw = plainFlaw(object);
        if (flaw.kind != AppcFlaw::None) return {flaw, {}};
        const std::string package = plainText(object["package"]);
        apps[package] = {plainText(object["activity"]), plainText(object["appLabel"]),
                         plainVersion(object["versionCode"]), plainText(object["versionName"]),
                         package + ".png"};
    }
    return {{}, apps};
}

void checkFlaw(const AppcFlaw& flaw, const AppcFlaw& expected) {
    check(flaw.kind == expected.kind, "the kind of the flaw");
    if (flaw.kind == AppcFlaw::NotDefined || flaw.kind == AppcFlaw::InvalidType) {
        check(flaw.key == std::string(expected.key), "the key of the flaw");
    }
    if (flaw.kind == AppcFlaw::InvalidType) {
        check(flaw.type == expected.type, "the type of a mistyped key");
        check(flaw.expected == std::string(expected.expected), "the type that it should have");
    }
}

void checkApps(const QJsonArray& array) {
    AppcApps apps{{"left", {}}};
    checkFlaw(appcReadApps(array, apps), readPlainly(array).flaw);
    check(areSame(apps, readPlainly(array).apps), "the apps are those of the plain reader");
    const std::string text = appcFileText(apps);
    check(text == textByQt(apps, "iconFileName", ""), "the file is Qt's");
    const std::string folder = "C:\\Data \"x\"\\";
    check(appcListingText(apps, folder) == textByQt(apps, "iconFilePath", folder),
          "the listing is Qt's");
    QJsonArray again;
    check(appcParseArray(text, again), "the file is an array");
    AppcApps reread;
    check(appcReadApps(again, reread).kind == AppcFlaw::None, "the file has no flaw");
    check(areSame(reread, apps), "the file reads back the same");
}

void checkParsed(bool parsed, const QJsonArray& array, const QJsonValue& expected) {
    check(parsed == (expected.type() == QJsonValue::Array), "whether there is an array");
    check(array == expected.toArray(), "the array");
    if (parsed) checkApps(array);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = textOf(data, size);
    const QJsonDocument document =
        QJsonDocument::fromJson(QByteArray(text.data(), static_cast<int>(text.size())));
    QJsonArray array;
    const bool isArray = appcParseArray(text, array);
    checkParsed(isArray, array, document.isArray() ? QJsonValue(document.array()) : QJsonValue());
    QJsonArray list;
    const bool isList = appcParseSyncList(text, list);
    checkParsed(isList, list, document.isObject() ? document.object()["apps"] : QJsonValue());
    return 0;
}
