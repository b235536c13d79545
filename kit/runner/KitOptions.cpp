#include "KitOptions.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace {

std::vector<std::string> itemsOf(std::string_view text) {
    std::vector<std::string> items;
    while (!text.empty()) {
        const std::string_view item = text.substr(0, text.find(','));
        text.remove_prefix(std::min(text.size(), item.size() + 1));
        if (!item.empty()) items.emplace_back(item);
    }
    return items;
}

}  // namespace

std::optional<KitOptions> readKitOptions(const std::vector<std::string>& arguments) {
    KitOptions options;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (arguments[i] == "--help") {
            options.help = true;
        } else if (arguments[i] == "--no-questions") {
            options.runner.questions = false;
        } else if (arguments[i] == "--only" && i + 1 < arguments.size()) {
            options.runner.only = itemsOf(arguments[++i]);
        } else {
            return std::nullopt;
        }
    }
    return options;
}
