// A small host in C++: example_cpp [EVENTS]
// Lists the instances, reads a setting, waits for EVENTS events (default 0), and ends.
#include <bridge/bridge.hpp>
#include <chrono>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <stdexcept>
#include <variant>

namespace {

// Prints the problems with which the initialisation would fail or end the process.
bool canStart(bridge::Client client) {
    const auto problems = bridge::preflight(client);
    for (const bridge::Problem& one : problems) {
        std::cerr << one.what << ": " << one.remedy << '\n';
    }
    return problems.empty();
}

void print(const bridge::Event& event) {
    if (const auto* const app = std::get_if<bridge::events::AppInstalled>(&event)) {
        std::cout << "installed " << app->instance << ' ' << app->package << ": " << app->appLabel
                  << ' ' << app->versionName << '\n';
    } else if (const auto* const shown = std::get_if<bridge::events::AppDisplayed>(&event)) {
        std::cout << "displayed " << shown->instance << ' ' << shown->package << '\n';
    }
}

}  // namespace

int main(int count, char** arguments) {
    if (!canStart(bridge::Client::Helper)) return 1;
    if (const bridge::Status status = bridge::init(bridge::Client::Helper); !status) {
        std::cerr << "the library does not start: " << status.code() << '\n'
                  << status.error().what() << '\n';
        return 1;
    }
    try {
        std::cout << "instances " << bridge::instances().value() << '\n';
        std::cout << "locale " << bridge::conf::get(bridge::keys::locale) << '\n';

        bridge::EventQueue events({"appInstalled", "appDisplayed"});
        if (const auto result = bridge::listen(); !result) throw std::runtime_error(result.text);
        std::cout << "listening" << std::endl;
        for (int left = count > 1 ? std::atoi(arguments[1]) : 0; left > 0; --left) {
            const auto event = events.pop(std::chrono::seconds(30));
            if (event) print(*event);
        }
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
    bridge::finish();  // no event arrives after this
    std::cout << "finished\n";
}
