// The listings of instances and of installed apps.
#include <rapidjson/document.h>
#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <memory>
#include <string>
#include <vector>

#include "Bench.h"
#include "Floor.h"
#include "SampleConf.h"
#include "appc/AppcJson.h"
#include "appc/AppcStore.h"
#include "bridge/BridgeApps.h"
#include "bridge/BridgeConf.h"

namespace {

constexpr int kCounts[] = {10, 1000, 10000};
constexpr double kQtAim = 1.1;
constexpr const char* kInstance = "Nougat64";

// The values in an instance's object, in memory, so that the competitors read no properties.
struct Instance {
    std::string name;
    std::string deviceProfile;
    std::string graphicsEngine;
    std::string graphicsRenderer;
    std::string imageName;
    std::string displayName;
    int ram;
    int cpu;
};
using Instances = std::vector<Instance>;

struct Listing {
    explicit Listing(int count) : store(count) {
        for (int i = 0; i < count; ++i) {
            const std::string prefix = "vtr.instance." + instanceName(i) + ".";
            const auto value = [&](const char* name) { return store.values[prefix + name]; };
            instances.push_back({instanceName(i), value("device_profile_code"),
                                 value("graphics_engine"), value("graphics_renderer"), "Nougat64",
                                 value("display_name"), std::stoi(value("ram")),
                                 std::stoi(value("cpus"))});
        }
    }

    SampleStore store;
    Instances instances;
};

QString qt(const std::string& text) { return QString::fromStdString(text); }

std::string qtListing(const Instances& instances) {
    QJsonArray array;
    for (const Instance& instance : instances) {
        array.append(
            QJsonObject{{QStringLiteral("instance"), qt(instance.name)},
                        {QStringLiteral("deviceProfile"), qt(instance.deviceProfile)},
                        {QStringLiteral("graphicsEngine"), qt(instance.graphicsEngine)},
                        {QStringLiteral("graphicsRenderer"), qt(instance.graphicsRenderer)},
                        {QStringLiteral("imageName"), qt(instance.imageName)},
                        {QStringLiteral("displayName"), qt(instance.displayName)},
                        {QStringLiteral("ram"), instance.ram},
                        {QStringLiteral("cpu"), instance.cpu}});
    }
    return QJsonDocument(array).toJson().toStdString();
}

using PrettyWriter = rapidjson::PrettyWriter<rapidjson::StringBuffer>;

void member(PrettyWriter& writer, const char* key, const std::string& text) {
    writer.Key(key);
    writer.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
}

std::string rapidListing(const Instances& instances) {
    rapidjson::StringBuffer buffer;
    PrettyWriter writer(buffer);
    writer.StartArray();
    for (const Instance& instance : instances) {
        writer.StartObject();
        writer.Key("cpu");
        writer.Int(instance.cpu);
        member(writer, "deviceProfile", instance.deviceProfile);
        member(writer, "displayName", instance.displayName);
        member(writer, "graphicsEngine", instance.graphicsEngine);
        member(writer, "graphicsRenderer", instance.graphicsRenderer);
        member(writer, "imageName", instance.imageName);
        member(writer, "instance", instance.name);
        writer.Key("ram");
        writer.Int(instance.ram);
        writer.EndObject();
    }
    writer.EndArray();
    return {buffer.GetString(), buffer.GetSize()};
}

std::vector<Side> instanceSides(int count) {
    const auto listing = std::make_shared<Listing>(count);
    benchCheck(bridgeInstancesJson(listing->store.store) == qtListing(listing->instances),
               "the listings differ");
    return {
        {"library", 0, timed([listing] { benchUse(bridgeInstancesJson(listing->store.store)); })},
        {"QJsonDocument", kQtAim, timed([listing] { benchUse(qtListing(listing->instances)); })},
        {"RapidJSON", 0, timed([listing] { benchUse(rapidListing(listing->instances)); })}};
}

// The app cache of one instance, on disk. All sides read the file, because hosts need its current
// state.
struct Apps {
    explicit Apps(int count)
        : store(appcDiskFiles(), folder.path() + "\\", folder.path() + "\\Shared\\") {
        AppcApps apps;
        for (int i = 0; i < count; ++i) {
            const std::string package = "com.example.publisher" + std::to_string(i) + ".app";
            apps[package] = {package + ".MainActivity", "App number " + std::to_string(i), 1000 + i,
                             "1.2." + std::to_string(i), appcIconFileName(package)};
        }
        folder.makeFolder("Engine");
        folder.makeFolder("Engine\\Nougat64");
        folder.makeFolder("Engine\\Nougat64\\AppCache");
        const std::string name = "Engine\\Nougat64\\AppCache\\AppCache.json";
        path = floorPath(folder.write(name, appcFileText(apps)));
        icons = folder.path() + "\\Engine/Nougat64/AppCache/";
    }

    TempFolder folder;
    AppcStore store;
    FloorPath path;
    std::string icons;
};

std::string libraryApps(Apps& apps) {
    const auto text = internal::bridgeGetInstalledApps(apps.store, kInstance);
    benchCheck(text.has_value(), "no apps");
    return *text;
}

std::string qtApps(const Apps& apps) {
    const std::string content = floorRead(apps.path);
    const QString icons = qt(apps.icons);
    QJsonArray array;
    const auto document =
        QJsonDocument::fromJson(QByteArray(content.data(), static_cast<int>(content.size())));
    for (const QJsonValue element : document.array()) {
        QJsonObject object = element.toObject();
        const QString icon = object.take(QStringLiteral("iconFileName")).toString();
        object.insert(QStringLiteral("iconFilePath"), icons + icon);
        array.append(object);
    }
    return QJsonDocument(array).toJson().toStdString();
}

std::string rapidApps(const Apps& apps) {
    const std::string content = floorRead(apps.path);
    rapidjson::Document document;
    document.Parse(content.data(), content.size());
    rapidjson::StringBuffer buffer;
    PrettyWriter writer(buffer);
    writer.StartArray();
    for (const auto& element : document.GetArray()) {
        writer.StartObject();
        for (auto entry = element.MemberBegin(); entry != element.MemberEnd(); ++entry) {
            const std::string key = entry->name.GetString();
            if (key == "iconFileName") {
                member(writer, "iconFilePath", apps.icons + entry->value.GetString());
            } else {
                writer.Key(key.c_str());
                entry->value.Accept(writer);
            }
        }
        writer.EndObject();
    }
    writer.EndArray();
    return {buffer.GetString(), buffer.GetSize()};
}

std::vector<Side> appSides(int count) {
    const auto apps = std::make_shared<Apps>(count);
    benchCheck(libraryApps(*apps) == qtApps(*apps), "the listings differ");
    return {{"library", 0, timed([apps] { benchUse(libraryApps(*apps)); })},
            {"QJsonDocument", kQtAim, timed([apps] { benchUse(qtApps(*apps)); })},
            {"RapidJSON", 0, timed([apps] { benchUse(rapidApps(*apps)); })}};
}

}  // namespace

void addListingRows(Rows& rows) {
    for (const int count : kCounts) {
        const std::string size = std::to_string(count);
        rows.push_back({"instances/" + size, "list " + size + " instances as JSON",
                        [count] { return instanceSides(count); }});
    }
    for (const int count : kCounts) {
        const std::string size = std::to_string(count);
        rows.push_back({"apps/" + size, "list " + size + " installed apps as JSON",
                        [count] { return appSides(count); }});
    }
}
