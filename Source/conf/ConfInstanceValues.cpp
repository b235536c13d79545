// A snapshot of several properties of all instances.
#include "conf/ConfInstanceValues.h"

#include "conf/Conf.h"
#include "conf/ConfKey.h"
#include "conf/ConfView.h"
#include "xpl/XsharedMutex.h"

namespace {

constexpr std::size_t kNone = static_cast<std::size_t>(-1);

// Typical size per instance.
constexpr std::size_t kTextSize = 80;

// The property's index; kNone when it cannot be read.
std::size_t indexOf(const ConfStore& store, const ConfColumn& column) {
    const ConfSchema& schema = store.catalogue.instances();
    const auto found = schema.find(column.property);
    if (found == schema.end() || found->second.type != column.type) return kNone;
    if (found->second.deprecated && !store.allowDeprecated) return kNone;
    return static_cast<std::size_t>(found - schema.begin());
}

// The value that a read returns; null while its removal is pending.
const std::string* shownText(const ConfValue& value) {
    if (value.isRemoved) return nullptr;
    return value.staged == nullptr ? &value.committed : value.staged.get();
}

}  // namespace

ConfInstanceValues::ConfInstanceValues(ConfStore& store, const ConfColumn* columns,
                                       std::size_t count)
    : width_(count + 1) {
    std::vector<std::size_t> indices;
    for (std::size_t i = 0; i < count; ++i) indices.push_back(indexOf(store, columns[i]));
    const XsharedGuard reading(store.viewLock);
    cells_.reserve(store.view.instanceCount() * width_);
    texts_.reserve(store.view.instanceCount() * kTextSize);
    store.view.forEachInstance([&](const std::string& name, const ConfView::Group& group) {
        add(&name);
        // Keys are split at the first ".", so none belongs to a name with a ".".
        const bool isReadable = name.find('.') == std::string::npos;
        for (const std::size_t index : indices) {
            add(isReadable && index != kNone ? shownText(group.values[index]) : nullptr);
        }
    });
}

void ConfInstanceValues::add(const std::string* text) {
    if (text == nullptr) {
        cells_.push_back({false, 0, 0});
        return;
    }
    cells_.push_back({true, texts_.size(), text->size()});
    texts_.append(*text);
}

std::optional<std::string_view> ConfInstanceValues::text(const Cell& cell) const {
    if (!cell.exists) return std::nullopt;
    return std::string_view(texts_).substr(cell.start, cell.length);
}
