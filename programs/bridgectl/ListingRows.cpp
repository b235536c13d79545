#include "ListingRows.h"

#include <nlohmann/json.hpp>
#include <string>

#include "xpl/Xerr.h"
#include "xpl/Xfile.h"

namespace {

using Json = nlohmann::json;

const char* iconMark(const std::string& path) {
    return xfileExists(path) == XERR_SUCCESS ? "yes" : "no";
}

std::string versionText(const Json& object) {
    const std::string name = object["versionName"];
    return (name.empty() ? "" : name + " ") + "(" + object["versionCode"].dump() + ")";
}

}  // namespace

std::vector<TableRow> instanceRows(const char* json) {
    std::vector<TableRow> rows{{"INSTANCE", "NAME", "IMAGE", "CPU", "RAM", "GRAPHICS", "PROFILE"}};
    for (const Json& object : Json::parse(json)) {
        rows.push_back({object["instance"], object["displayName"], object["imageName"],
                        object["cpu"].dump(), object["ram"].dump(),
                        object["graphicsEngine"].get<std::string>() + "/" +
                            object["graphicsRenderer"].get<std::string>(),
                        object["deviceProfile"]});
    }
    return rows;
}

std::vector<TableRow> appRows(const char* json) {
    std::vector<TableRow> rows{{"NAME", "PACKAGE", "ACTIVITY", "VERSION", "ICON"}};
    for (const Json& object : Json::parse(json)) {
        rows.push_back({object["appLabel"], object["package"], object["activity"],
                        versionText(object), iconMark(object["iconFilePath"])});
    }
    return rows;
}
