#include "ConfFixture.h"

#include <cstddef>
#include <mutex>
#include <string_view>

XErr ConfTest::init(std::string_view content) {
    folder.write("vantrel.conf", content);
    return confLibInit(store, path(), /*allowDeprecated=*/false);
}

XErr ConfTest::initWithoutFile() { return confLibInit(store, "", /*allowDeprecated=*/false); }

std::optional<std::string> ConfTest::committed(const std::string& key) {
    const std::lock_guard<std::mutex> guard(store.lock);
    const std::string* value = store.values.find(key);
    return value == nullptr ? std::nullopt : std::optional(*value);
}

std::size_t ConfTest::committedCount() {
    const std::lock_guard<std::mutex> guard(store.lock);
    return store.values.size();
}
