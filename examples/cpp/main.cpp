// A small host in C++: example_cpp [EVENTS]
// Lists the instances, reads a setting, waits for so many events (none without the number), ends.
#include <bridge/bridge.hpp>
#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <iostream>
#include <mutex>
#include <string_view>

namespace {

// Events come on the library's thread, and the main thread waits for them.
class EventCounter {
 public:
    void count() {
        const std::lock_guard<std::mutex> guard(lock_);
        ++count_;
        changed_.notify_all();
    }

    bool waitFor(int count) {
        std::unique_lock<std::mutex> guard(lock_);
        return changed_.wait_for(guard, std::chrono::seconds(30), [&] { return count_ >= count; });
    }

 private:
    std::mutex lock_;
    std::condition_variable changed_;
    int count_ = 0;
};

}  // namespace

int main(int count, char** arguments) {
    if (const bridge::Status status = bridge::init(bridge::Client::Helper); !status) {
        std::cerr << "the library does not start: " << status.code() << '\n';
        return 1;
    }
    std::cout << "instances " << bridge::instances().valueOr("") << '\n';
    std::cout << "locale " << bridge::conf::getString("vtr.locale").valueOr("") << '\n';

    EventCounter events;
    bridge::Callbacks callbacks;
    callbacks.appInstalled = [&events](const bridge::AppInstalled& app) {
        std::cout << "installed " << app.instance << ' ' << app.package << ": " << app.appLabel
                  << ' ' << app.versionName << '\n';
        events.count();
    };
    callbacks.appDisplayed = [&events](std::string_view instance, std::string_view package) {
        std::cout << "displayed " << instance << ' ' << package << '\n';
        events.count();
    };
    bridge::registerCallbacks(callbacks);
    std::cout << "listening" << std::endl;
    events.waitFor(count > 1 ? std::atoi(arguments[1]) : 0);

    bridge::finish();  // from here on no function is called
    std::cout << "finished\n";
}
