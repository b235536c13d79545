#include "HookedFiles.h"
#include "support/TestHeaders.h"

class HookedFiles::Output final : public ConfOutput {
 public:
    Output(const HookedFiles& files, std::unique_ptr<ConfOutput> disk)
        : files_(files), disk_(std::move(disk)) {}

    XErr write(std::string_view piece, std::size_t& done) override {
        const XErr err = files_.before_(Step::Write);
        if (err == XERR_SUCCESS) return disk_->write(piece, done);
        done = files_.writtenBeforeFailure;
        return err;
    }

 private:
    const HookedFiles& files_;
    std::unique_ptr<ConfOutput> disk_;
};

ConfFileRead HookedFiles::read(const std::string& path, std::string& content) {
    if (before_(Step::Read) != XERR_SUCCESS) return ConfFileRead::ReadFailed;
    return confDiskFiles().read(path, content);
}

XErr HookedFiles::create(const std::string& path, std::unique_ptr<ConfOutput>& output) {
    if (const XErr err = before_(Step::Create); err != XERR_SUCCESS) return err;
    std::unique_ptr<ConfOutput> disk;
    const XErr err = confDiskFiles().create(path, disk);
    if (err == XERR_SUCCESS) output = std::make_unique<Output>(*this, std::move(disk));
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
