// Reads the lines of a file into a view, and writes them.
#include "conf/ConfViewText.h"

#include <algorithm>
#include <cstddef>

#include "conf/ConfKey.h"
#include "conf/ConfText.h"

namespace {

// Finds the values of a file's keys. An instance's keys usually follow each other, so its lookup is
// cached.
class Target {
 public:
    explicit Target(ConfView& view) : view_(view) {}

    ConfValue& value(const ConfKey& key) {
        if (key.scope == ConfScope::Global) return view_.value(key);
        if (group_ == nullptr || instance_ != key.instance) {
            group_ = &view_.addInstance(key.instance);
            instance_ = key.instance;
        }
        return group_->values[key.index];
    }

 private:
    ConfView& view_;
    ConfView::Group* group_ = nullptr;
    std::string_view instance_;
};

const char* directoryOf(const ConfKey& key) {
    return key.scope == ConfScope::Instance ? "iprop dir" : "prop dir";
}

// Appends the line of an entry, unless it would not read back.
XErr appendLine(std::string& text, std::string_view prefix, std::string_view name,
                const ConfValue& value) {
    const auto check = value.isRead ? confCheckReadEntry : confCheckEntry;
    char line[CONF_LINE_SIZE];
    if (prefix.size() + name.size() > sizeof line) {
        return check(std::string(prefix).append(name), value.committed);
    }
    char* const afterPrefix = std::copy(prefix.begin(), prefix.end(), line);
    char* const afterKey = std::copy(name.begin(), name.end(), afterPrefix);
    const std::string_view key(line, static_cast<std::size_t>(afterKey - line));
    const XErr err = check(key, value.committed);
    if (err == XERR_SUCCESS) text.append(line, confEndLine(afterKey, value.committed));
    return err;
}

}  // namespace

std::optional<ConfBadLine> confReadView(ConfView& view, ConfView::Names& deprecated,
                                        std::string_view text) {
    view.forgetInstances();
    ConfTextReader reader(text);
    Target target(view);
    std::size_t next = 0;  // likely index: properties follow each other too
    ConfEntry entry;
    ConfRead read;
    while ((read = reader.next(entry)) == ConfRead::Entry) {
        const ConfKey key = confFindKey(view.catalogue(), entry.key, next);
        next = key.index + 1;
        if (key.declared == nullptr) return ConfBadLine{entry.line, entry.key, directoryOf(key)};
        ConfValue& value = target.value(key);
        value.commit(entry.value);
        value.isRead = !entry.hasNul;
        if (key.declared->deprecated) deprecated.emplace(key.text);
    }
    if (read == ConfRead::Malformed) return ConfBadLine{entry.line, {}, nullptr};
    return std::nullopt;
}

std::optional<ConfRefusedEntry> confWriteView(const ConfView& view, std::string& text) {
    std::optional<ConfRefusedEntry> refused;
    text.clear();
    view.forEach([&](std::string_view prefix, std::string_view name, const ConfValue& value) {
        if (refused || !value.isCommitted) return;
        const XErr err = appendLine(text, prefix, name, value);
        if (err == XERR_SUCCESS) return;
        refused = {err, std::string(prefix).append(name), value.committed};
    });
    return refused;
}
