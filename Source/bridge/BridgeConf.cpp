// The instance listing, and the commit to a file of the host's choice.
#include "bridge/BridgeConf.h"

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string_view>

#include "bridge/BridgeEntry.h"
#include "conf/ConfInstanceValues.h"
#include "conf/ConfKey.h"
#include "conf/ConfNumber.h"
#include "utl/UtlImages.h"
#include "utl/UtlJson.h"

namespace {

// Typical size of an element.
constexpr std::size_t kElementSize = 320;

// Properties in the listing, in the order in which they are read: the first one that cannot be read
// is fatal.
enum Column : std::size_t { DEVICE_PROFILE, ENGINE, RENDERER, DISPLAY_NAME, RAM, CPUS };

constexpr ConfColumn kColumns[] = {{"device_profile_code", ConfType::String},
                                   {"graphics_engine", ConfType::String},
                                   {"graphics_renderer", ConfType::String},
                                   {"display_name", ConfType::String},
                                   {"ram", ConfType::I32},
                                   {"cpus", ConfType::I32}};

// An instance of the listing.
class Instance {
 public:
    Instance(ConfStore& store, const ConfInstanceValues& values, std::size_t number)
        : store_(store), values_(values), number_(number) {}

    std::string_view name() const { return values_.name(number_); }

    // Reads a value missing from the snapshot by its key: this logs why it cannot be read, or
    // succeeds if it has become readable.
    std::string_view text(Column column) {
        if (const auto value = values_.value(number_, column)) return *value;
        return spare_[column] = confGetString(store_, keyOf(column));
    }
    std::int32_t number(Column column) const {
        std::int32_t number = 0;
        const auto value = values_.value(number_, column);
        return value && confParseI32(*value, number) ? number : confGetI32(store_, keyOf(column));
    }

 private:
    std::string keyOf(Column column) const {
        return confInstancePrefix(name()).append(kColumns[column].property);
    }

    ConfStore& store_;
    const ConfInstanceValues& values_;
    const std::size_t number_;
    std::string spare_[std::size(kColumns)];
};

void append(UtlJsonArray& array, Instance instance) {
    const char* const image = utlGetImageTrait(utlImageNameOfInstance(instance.name())).name;
    const std::string_view deviceProfile = instance.text(DEVICE_PROFILE);
    const std::string_view engine = instance.text(ENGINE);
    const std::string_view renderer = instance.text(RENDERER);
    const std::string_view displayName = instance.text(DISPLAY_NAME);
    const std::int32_t ram = instance.number(RAM);
    array.object();
    array.member("cpu", instance.number(CPUS));  // the only one shown under another name
    array.member("deviceProfile", deviceProfile);
    array.member("displayName", displayName);
    array.member("graphicsEngine", engine);
    array.member("graphicsRenderer", renderer);
    array.member("imageName", image);
    array.member("instance", instance.name());
    array.member("ram", ram);
}

}  // namespace

std::string bridgeInstancesJson(ConfStore& store) {
    const ConfInstanceValues values(store, kColumns, std::size(kColumns));
    UtlJsonArray array(values.size() * kElementSize);
    for (std::size_t i = 0; i < values.size(); ++i) append(array, Instance(store, values, i));
    return array.take();
}

XErr internal::bridgeConfCommitToFile(ConfStore& store, const std::string& path) {
    XLOG_I(kLog, "bridgeConfCommitToFile args: %s", path.c_str());
    return confCommitToFile(store, path);
}
