#include "ConfFixture.h"

#include "support/FatalBreak.h"
#include "support/LogLines.h"
#include "support/Platform.h"

std::string ownLockName(const std::string& path) {
    std::string name = path.substr(0, path.rfind('\\'));
    return "Global\\vtr_test_" + name.substr(name.rfind('\\') + 1);
}

ConfProperty deprecatedText(const std::string& defaultValue) {
    return {ConfType::String, defaultValue, /*excludeFromAllConfigs=*/false, /*deprecated=*/true};
}

void expectConfBreak(const std::string& subprocess, const SubprocessArguments& arguments,
                     const std::string& line, const std::string& function) {
    Lines expected{logged::fatalBreak("CONF", "Source/conf/Conf", function)};
    if (!line.empty()) expected.insert(expected.begin(), logged::by("", line));
    EXPECT_EQ(linesUntilBreak(subprocess, arguments), expected);
}

XErr ConfTest::init(std::string_view content) {
    writeFile(content);
    return confLibInit(store, path(), /*allowDeprecated=*/false);
}

void ConfTest::load(ConfStore& other, std::string_view content, bool allowDeprecated) {
    writeFile(content);
    ASSERT_EQ(confLibInit(other, path(), allowDeprecated), 0);
    log.clear();
}

void ConfTest::expectFile(const Entries& entries, const std::string& name) const {
    Entries all = entries;
    all.merge(globalDefaults());
    constexpr std::string_view prefix = "vtr.instance.";
    for (const auto& [key, value] : entries) {
        if (key.rfind(prefix, 0) != 0) continue;
        addInstanceDefaults(
            all, key.substr(prefix.size(), key.find('.', prefix.size()) - prefix.size()));
    }
    EXPECT_EQ(folder.read(name), fileText(all));
}

bool ConfTest::hasLine(const std::string& line) const {
    return ("\n" + file()).find("\n" + line + "\n") != std::string::npos;
}

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

void ConfTest::waitUntilLocked() {
    while (store.lock.try_lock()) {
        store.lock.unlock();
        sleepMs(1);
    }
}
