// The instance listing.
#include "bridge/BridgeInstances.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "conf/ConfKey.h"
#include "utl/UtlImages.h"

namespace {

QString fromUtf8(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<int>(text.size()));
}

QJsonObject instanceObject(ConfStore& store, const std::string& name) {
    const std::string prefix = confInstancePrefix(name);
    const auto text = [&](const char* property) {
        return fromUtf8(confGetString(store, prefix + property));
    };
    const auto number = [&](const char* property) { return confGetI32(store, prefix + property); };
    return {
        {QStringLiteral("instance"), fromUtf8(name)},
        {QStringLiteral("deviceProfile"), text("device_profile_code")},
        {QStringLiteral("graphicsEngine"), text("graphics_engine")},
        {QStringLiteral("graphicsRenderer"), text("graphics_renderer")},
        {QStringLiteral("imageName"),
         fromUtf8(utlGetImageTrait(utlImageNameOfInstance(name)).name)},
        {QStringLiteral("displayName"), text("display_name")},
        {QStringLiteral("ram"), number("ram")},
        {QStringLiteral("cpu"),
         number("cpus")},  // the one member that is not named as its property
    };
}

}  // namespace

std::string bridgeInstancesJson(ConfStore& store) {
    QJsonArray array;
    for (const std::string& name : confGetInstances(store)) {
        array.append(instanceObject(store, name));
    }
    return QJsonDocument(array).toJson().toStdString();
}
