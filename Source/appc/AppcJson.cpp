// Reading goes through Qt. Writing gives the very bytes of QJsonDocument::toJson without building a
// second copy of everything first, which would take most of the time of a listing.
#include "appc/AppcJson.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>
#include <charconv>
#include <limits>

namespace {

constexpr std::size_t kLargestText = std::numeric_limits<int>::max();

// About the size of an element without its texts.
constexpr std::size_t kElementSize = 256;

QJsonDocument parse(std::string_view text) {
    if (text.size() > kLargestText) return {};
    return QJsonDocument::fromJson(
        QByteArray::fromRawData(text.data(), static_cast<int>(text.size())));
}

std::int32_t saturated(double number) {
    using Limits = std::numeric_limits<std::int32_t>;
    if (number >= Limits::max()) return Limits::max();
    if (number <= Limits::min()) return Limits::min();
    return static_cast<std::int32_t>(number);
}

// The members of one element. After a flaw the others are not looked at.
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
        // Elements usually come in order.
        apps.insert_or_assign(apps.end(), std::move(package), std::move(app));
    }
    return reader.flaw();
}

bool isAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

void appendEscape(std::string& out, char c) {
    constexpr std::string_view escaped = "\"\\\b\f\n\r\t";
    constexpr std::string_view names = "\"\\bfnrt";
    constexpr std::string_view digits = "0123456789abcdef";
    const std::size_t known = escaped.find(c);
    if (known != std::string_view::npos) {
        out.append(1, '\\').append(1, names[known]);
        return;
    }
    const std::size_t code = static_cast<unsigned char>(c);
    out.append("\\u00").append(1, digits[code >> 4]).append(1, digits[code & 15]);
}

bool needsEscape(char c) { return static_cast<unsigned char>(c) < 0x20 || c == '"' || c == '\\'; }

void appendEscaped(std::string& out, std::string_view text) {
    while (!text.empty()) {
        const auto end = std::find_if(text.begin(), text.end(), needsEscape);
        const auto plain = static_cast<std::size_t>(end - text.begin());
        out.append(text.substr(0, plain));
        if (plain == text.size()) return;
        appendEscape(out, text[plain]);
        text.remove_prefix(plain + 1);
    }
}

void appendQuoted(std::string& out, std::string_view text) {
    out += '"';
    if (isAscii(text)) {
        appendEscaped(out, text);
    } else {
        // Bytes that are not UTF-8 become what Qt makes of them.
        const int size = static_cast<int>(text.size());
        const QByteArray bytes = QString::fromUtf8(text.data(), size).toUtf8();
        appendEscaped(out, {bytes.constData(), static_cast<std::size_t>(bytes.size())});
    }
    out += '"';
}

void appendNumber(std::string& out, std::int32_t number) {
    char digits[12];
    const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
    out.append(digits, end);
}

// How an element shows its icon.
struct IconMember {
    std::string_view key;
    std::string_view folder;
};

void appendText(std::string& out, std::string_view key, std::string_view text) {
    out.append("        \"").append(key).append("\": ");
    appendQuoted(out, text);
    out.append(",\n");
}

// Members are in ascending order of their keys, as Qt keeps them.
void appendElement(std::string& out, const AppcApps::value_type& entry, const IconMember& icon) {
    const auto& [package, app] = entry;
    out.append("    {\n");
    appendText(out, "activity", app.activity);
    appendText(out, "appLabel", app.appLabel);
    appendText(out, icon.key, std::string(icon.folder).append(app.iconFileName));
    appendText(out, "package", package);
    out.append("        \"versionCode\": ");
    appendNumber(out, app.versionCode);
    out.append(",\n        \"versionName\": ");
    appendQuoted(out, app.versionName);
    out.append("\n    }");
}

std::string arrayText(const AppcApps& apps, const IconMember& icon) {
    std::string out;
    out.reserve(apps.size() * (kElementSize + icon.folder.size()));
    out.append("[\n");
    for (auto entry = apps.begin(); entry != apps.end(); ++entry) {
        if (entry != apps.begin()) out.append(",\n");
        appendElement(out, *entry, icon);
    }
    if (!apps.empty()) out += '\n';
    return out.append("]\n");
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
