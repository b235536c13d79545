#include "event_printer.hpp"

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <string_view>

#include "support/event_table.h"

namespace {

std::string shown(std::string_view text) { return std::string(text); }
std::string shown(std::int32_t number) { return std::to_string(number); }
std::string shown(bool flag) { return flag ? "1" : "0"; }

std::string shown(double number) {
    char text[64];
    std::snprintf(text, sizeof text, "%.3f", number);
    return text;
}

template <typename... Values>
std::string line(const char* name, const Values&... values) {
    std::string text = name;
    char before = ' ';
    const auto add = [&](const std::string& value) {
        text.append(1, before).append(value);
        before = '|';
    };
    (add(shown(values)), ...);
    return text;
}

std::string line(const char* name, const bridge::AppInstalled& app) {
    return line(name, app.instance, app.package, app.activity, app.appLabel, app.versionCode,
                app.versionName, app.iconFilePath, app.isUpdate);
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
#define PRINT(opcode, type, slot, printed, name) \
    all.printed = [this](const auto&... values) { print(line(#printed, values...)); };
    KNOWN_EVENTS(PRINT, )
#undef PRINT
    return all;
}
