#ifndef APPC_APPCAPP_H
#define APPC_APPCAPP_H

#include <cstdint>
#include <functional>
#include <map>
#include <string>

// An installed app. Texts are UTF-8.
struct AppcApp {
    std::string activity;  // launch activity
    std::string appLabel;  // name shown to the user
    std::int32_t versionCode = 0;
    std::string versionName;
    std::string iconFileName;  // package name and ".png", beside the cache's file
};

// Apps by package name, in byte order.
using AppcApps = std::map<std::string, AppcApp, std::less<>>;

inline std::string appcIconFileName(const std::string& package) { return package + ".png"; }

#endif
