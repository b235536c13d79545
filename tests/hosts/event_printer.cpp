#include "event_printer.hpp"

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <initializer_list>
#include <string_view>

namespace {

std::string joined(std::initializer_list<std::string_view> parts) {
    std::string text;
    for (const std::string_view part : parts) {
        if (!text.empty()) text += '|';
        text += part;
    }
    return text;
}

std::string shown(double number) {
    char text[64];
    std::snprintf(text, sizeof text, "%.3f", number);
    return text;
}

}  // namespace

void EventPrinter::print(std::string line) {
    const std::lock_guard<std::mutex> guard(lock_);
    const std::thread::id here = std::this_thread::get_id();
    if (server_ == std::thread::id()) server_ = here;
    if (here != server_ || here == main_) line += " ON THE WRONG THREAD";
    line += '\n';
    std::fwrite(line.data(), 1, line.size(), stdout);
    ++count_;
    changed_.notify_all();
}

bool EventPrinter::waitFor(int count) {
    std::unique_lock<std::mutex> guard(lock_);
    return changed_.wait_for(guard, std::chrono::seconds(30), [&] { return count_ >= count; });
}

bridge::Callbacks EventPrinter::callbacks() {
    bridge::Callbacks all;
    all.appInstalled = [this](const bridge::AppInstalled& app) {
        print("appInstalled " + joined({app.instance, app.package, app.activity, app.appLabel,
                                        std::to_string(app.versionCode), app.versionName,
                                        app.iconFilePath, app.isUpdate ? "1" : "0"}));
    };
    all.appUninstalled = [this](std::string_view instance, std::string_view package) {
        print("appUninstalled " + joined({instance, package}));
    };
    all.apkInstallCompleted = [this](std::string_view instance, std::int32_t status,
                                     std::string_view apkFilePath) {
        print("apkInstallCompleted " + joined({instance, std::to_string(status), apkFilePath}));
    };
    all.instanceListUpdated = [this] { print("instanceListUpdated"); };
    all.installImageProgress = [this](std::string_view imageName, std::int32_t status,
                                      double progress) {
        print("installImageProgress " +
              joined({imageName, std::to_string(status), shown(progress)}));
    };
    all.createInstanceCompleted = [this](std::int32_t status, std::string_view instance) {
        print("createInstanceCompleted " + joined({std::to_string(status), instance}));
    };
    all.instanceConfigurationChanged = [this](std::string_view instance) {
        print("instanceConfigurationChanged " + std::string(instance));
    };
    all.appDisplayed = [this](std::string_view instance, std::string_view package) {
        print("appDisplayed " + joined({instance, package}));
    };
    all.accountListUpdated = [this](std::string_view instance, std::string_view emailId,
                                    std::int32_t action) {
        print("accountListUpdated " + joined({instance, emailId, std::to_string(action)}));
    };
    return all;
}
