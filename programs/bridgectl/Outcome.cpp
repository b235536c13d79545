#include "Outcome.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <variant>

#include "utl/UtlImages.h"

namespace {

using Texts = std::vector<std::string>;

bool isKind(const Event& event, std::string_view name) { return event.kind->name == name; }

std::string textAt(const Event& event, std::size_t index) {
    return std::get<std::string>(event.values[index]);
}

std::int32_t numberAt(const Event& event, std::size_t index) {
    return std::get<std::int32_t>(event.values[index]);
}

Outcome ofStatus(std::int32_t status) { return status == 0 ? Outcome::Success : Outcome::Failure; }

// The first two fields are the first two arguments.
Outcome ofApp(const Event& event, const char* kind, const Texts& texts) {
    const bool fits =
        isKind(event, kind) && textAt(event, 0) == texts[0] && textAt(event, 1) == texts[1];
    return fits ? Outcome::Success : Outcome::Unknown;
}

// The sender may write the folder differently.
std::string_view fileName(std::string_view path) {
    return path.substr(path.find_last_of("\\/") + 1);
}

}  // namespace

Outcome launchOutcome(const Event& event, const Texts& texts) {
    return ofApp(event, "app-displayed", texts);
}

Outcome uninstallOutcome(const Event& event, const Texts& texts) {
    return ofApp(event, "app-uninstalled", texts);
}

Outcome installApkOutcome(const Event& event, const Texts& texts) {
    const bool fits = isKind(event, "apk-install-completed") && textAt(event, 0) == texts[0] &&
                      fileName(textAt(event, 2)) == fileName(texts[1]);
    return fits ? ofStatus(numberAt(event, 1)) : Outcome::Unknown;
}

Outcome installImageOutcome(const Event& event, const Texts& texts) {
    if (!isKind(event, "image-install-progress") || textAt(event, 0) != texts[0]) {
        return Outcome::Unknown;
    }
    constexpr std::int32_t kInstalled = 2;  // the status at which the library reloads the list
    const std::int32_t status = numberAt(event, 1);
    if (status == kInstalled) return Outcome::Success;
    return status < 0 ? Outcome::Failure : Outcome::Unknown;
}

Outcome createInstanceOutcome(const Event& event, const Texts& texts) {
    if (!isKind(event, "create-instance-completed")) return Outcome::Unknown;
    const std::int32_t status = numberAt(event, 0);
    // The event of a failed creation may lack the name.
    const std::string instance = textAt(event, 1);
    const bool isOther = utlImageNameOfInstance(instance) != texts[0];
    return isOther && (status == 0 || !instance.empty()) ? Outcome::Unknown : ofStatus(status);
}
