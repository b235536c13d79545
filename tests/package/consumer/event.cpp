#include <bridge/bridge.hpp>
#include <cstdio>
#include <variant>

int main() {
    if (!bridge::init(bridge::Client::Helper)) return 1;
    bridge::EventQueue queue({"appDisplayed"});
    if (!bridge::listen()) return 1;  // another program has the events
    const auto event = std::get<bridge::events::AppDisplayed>(queue.pop().value());
    std::printf("%s shows %s\n", event.instance.c_str(), event.package.c_str());
    bridge::finish();
}
