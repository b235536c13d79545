// Reads with Qt. Writes the same bytes as QJsonDocument::toJson, but without building a tree, which
// would take most of the time of a listing.
#include "appc/AppcJson.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>

#include "utl/UtlJson.h"

namespace {

// Typical size of an element without its strings.
constexpr std::size_t kElementSize = 256;

// A text that is too long for Qt counts as invalid JSON.
QJsonDocument parse(std::string_view text) {
    if (text.size() > static_cast<std::size_t>(std::numeric_limits<int>::max())) return {};
    return QJsonDocument::fromJson(
        QByteArray::fromRawData(text.data(), static_cast<int>(text.size())));
}

std::int32_t saturated(double number) {
    using Limits = std::numeric_limits<std::int32_t>;
    if (number >= Limits::max()) return Limits::max();
    if (number <= Limits::min()) return Limits::min();
    return static_cast<std::int32_t>(number);
}

// Reads the members of one element, up to the first flaw.
class ElementReader {
 public:
    explicit ElementReader(const QJsonObject& object) : object_(object) {}

    std::string text(const char* key) {
        return get(key, QJsonValue::String, "String").toString().toStdString();
    }

    std::int32_t number(const char* key) {
        return saturated(get(key, QJsonValue::Double, "Double").toDouble());
    }

    const AppcFlaw& flaw() const { return flaw_; }

 private:
    QJsonValue get(const char* key, QJsonValue::Type type, const char* typeName) {
        if (flaw_.kind != AppcFlaw::None) return {};
        QJsonValue value = object_.value(QLatin1String(key));
        if (value.type() == type) return value;
        const bool defined = !value.isUndefined() && !value.isNull();
        flaw_ = {defined ? AppcFlaw::InvalidType : AppcFlaw::NotDefined, key, value.type(),
                 typeName};
        return {};
    }

    const QJsonObject object_;
    AppcFlaw flaw_;
};

AppcFlaw readElement(const QJsonValue& element, AppcApps& apps) {
    if (!element.isObject()) return {AppcFlaw::NotAnObject};
    ElementReader reader(element.toObject());
    std::string package = reader.text("package");
    AppcApp app;
    app.activity = reader.text("activity");
    app.appLabel = reader.text("appLabel");
    app.versionCode = reader.number("versionCode");
    app.versionName = reader.text("versionName");
    app.iconFileName = appcIconFileName(package);
    if (reader.flaw().kind == AppcFlaw::None) {
        // Elements are usually sorted.
        apps.insert_or_assign(apps.end(), std::move(package), std::move(app));
    }
    return reader.flaw();
}

// The member that names the icon.
struct IconMember {
    std::string_view key;
    std::string_view folder;
};

std::string arrayText(const AppcApps& apps, const IconMember& icon) {
    UtlJsonArray array(apps.size() * (kElementSize + icon.folder.size()));
    for (const auto& [package, app] : apps) {
        array.object();
        array.member("activity", app.activity);
        array.member("appLabel", app.appLabel);
        array.member(icon.key, std::string(icon.folder).append(app.iconFileName));
        array.member("package", package);
        array.member("versionCode", app.versionCode);
        array.member("versionName", app.versionName);
    }
    return array.take();
}

}  // namespace

bool appcParseArray(std::string_view text, QJsonArray& array) {
    const QJsonDocument document = parse(text);
    array = document.array();
    return document.isArray();
}

bool appcParseSyncList(std::string_view text, QJsonArray& array) {
    const QJsonValue apps = parse(text).object().value(QLatin1String("apps"));
    array = apps.toArray();
    return apps.isArray();
}

AppcFlaw appcReadApps(const QJsonArray& array, AppcApps& apps) {
    apps.clear();
    for (const QJsonValue element : array) {
        const AppcFlaw flaw = readElement(element, apps);
        if (flaw.kind == AppcFlaw::None) continue;
        if (flaw.kind != AppcFlaw::NotAnObject) apps.clear();
        return flaw;
    }
    return {};
}

std::string appcFileText(const AppcApps& apps) { return arrayText(apps, {"iconFileName", ""}); }

std::string appcListingText(const AppcApps& apps, const std::string& folder) {
    return arrayText(apps, {"iconFilePath", folder});
}
