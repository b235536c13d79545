#include "HookedFiles.h"

#include <cstddef>
#include <string_view>
#include <utility>

namespace {

class HookedOutput final : public ConfOutput {
 public:
    HookedOutput(const HookedFiles::Before& before, std::unique_ptr<ConfOutput> disk)
        : before_(before), disk_(std::move(disk)) {}

    XErr write(std::string_view piece, std::size_t& done) override {
        const XErr err = before_(HookedFiles::Step::Write);
        if (err == XERR_SUCCESS) return disk_->write(piece, done);
        done = 0;
        return err;
    }

 private:
    const HookedFiles::Before& before_;
    std::unique_ptr<ConfOutput> disk_;
};

}  // namespace

ConfFileRead HookedFiles::read(const std::string& path, std::string& content) {
    if (before_(Step::Read) != XERR_SUCCESS) return ConfFileRead::ReadFailed;
    return confDiskFiles().read(path, content);
}

XErr HookedFiles::create(const std::string& path, std::unique_ptr<ConfOutput>& output) {
    if (const XErr err = before_(Step::Create); err != XERR_SUCCESS) return err;
    std::unique_ptr<ConfOutput> disk;
    const XErr err = confDiskFiles().create(path, disk);
    if (err == XERR_SUCCESS) output = std::make_unique<HookedOutput>(before_, std::move(disk));
    return err;
}

XErr HookedFiles::replace(const std::string& source, const std::string& destination) {
    const XErr err = before_(Step::Replace);
    return err == XERR_SUCCESS ? confDiskFiles().replace(source, destination) : err;
}

void HookedFiles::remove(const std::string& path) {
    static_cast<void>(before_(Step::Remove));
    confDiskFiles().remove(path);
}
