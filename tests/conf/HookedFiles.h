#ifndef TESTS_HOOKEDFILES_H
#define TESTS_HOOKEDFILES_H

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "conf/ConfFiles.h"

// The files of the disk. A hook of the test runs before each operation, and may wait or make the
// operation fail.
class HookedFiles final : public ConfFiles {
 public:
    enum class Step { Read, Create, Write, Replace, Remove };

    // The operation proceeds if this returns XERR_SUCCESS.
    using Before = std::function<XErr(Step)>;

    explicit HookedFiles(Before before) : before_(std::move(before)) {}

    // Makes one operation fail.
    HookedFiles(Step failing, XErr err)
        : HookedFiles([=](Step at) { return at == failing ? err : XERR_SUCCESS; }) {}

    // The number of bytes that a failed write reports as written.
    std::size_t writtenBeforeFailure = 0;

    ConfFileRead read(const std::string& path, std::string& content) override;
    XErr create(const std::string& path, std::unique_ptr<ConfOutput>& output) override;
    XErr replace(const std::string& source, const std::string& destination) override;
    void remove(const std::string& path) override;

 private:
    class Output;

    const Before before_;
};

#endif
