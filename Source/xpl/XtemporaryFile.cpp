#include "xpl/XtemporaryFile.h"

#include <utility>

#include "xpl/XcatchAll.h"

XtemporaryFile::XtemporaryFile(XfileReplacer& files, std::string path, const XlogModule& module,
                               const char* function)
    : files_(files), path_(std::move(path)), module_(module), function_(function) {}

XtemporaryFile::~XtemporaryFile() {
    if (exists_) xcatchAll(module_, function_, [this] { files_.remove(path_); });
}

XErr XtemporaryFile::moveOnto(const std::string& path) {
    const XErr err = files_.replace(path_, path);
    exists_ = err != XERR_SUCCESS;
    return err;
}
