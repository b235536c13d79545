// App lists: the file's text is Qt's own to the byte, and reads back as the same apps.
#include <QJsonDocument>
#include <QJsonObject>
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

// Both forms as Qt writes them.
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

void checkApps(const QJsonArray& array) {
    AppcApps apps;
    const AppcFlaw flaw = appcReadApps(array, apps);
    check(flaw.kind == AppcFlaw::None || flaw.kind == AppcFlaw::NotAnObject || apps.empty(),
          "a flawed key leaves no apps");
    check(static_cast<std::size_t>(array.size()) >= apps.size(), "no app is made up");
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

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = textOf(data, size);
    QJsonArray array;
    if (appcParseArray(text, array)) checkApps(array);
    QJsonArray list;
    if (appcParseSyncList(text, list)) checkApps(list);
    return 0;
}
