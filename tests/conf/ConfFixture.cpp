#include "ConfFixture.h"

#include <cstddef>
#include <string_view>

std::string ownLockName(const std::string& path) {
    std::string name = path.substr(0, path.rfind('\\'));
    return "Global\\vtr_test_" + name.substr(name.rfind('\\') + 1);
}

XErr ConfTest::init(std::string_view content) {
    folder.write("vantrel.conf", content);
    return confLibInit(store, path(), /*allowDeprecated=*/false);
}

XErr ConfTest::initWithoutFile() { return confLibInit(store, "", /*allowDeprecated=*/false); }

std::optional<std::string> ConfTest::committed(const std::string& key) {
    const XsharedGuard reading(store.viewLock);
    const ConfValue* value = store.view.find(confFindKey(catalogue, key));
    if (value == nullptr || !value->isCommitted) return std::nullopt;
    return value->committed;
}

std::size_t ConfTest::committedCount() {
    const XsharedGuard reading(store.viewLock);
    std::size_t count = 0;
    store.view.forEach([&count](std::string_view, std::string_view, const ConfValue& value) {
        if (value.isCommitted) ++count;
    });
    return count;
}
