#ifndef CONF_CONFFILES_H
#define CONF_CONFFILES_H

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "xpl/Xerr.h"
#include "xpl/XtemporaryFile.h"

enum class ConfFileRead { Done, OpenFailed, ReadFailed };

// A file that is being written. The destructor closes it.
class ConfOutput {
 public:
    virtual ~ConfOutput() = default;

    // `done` is the number of bytes written, after a failure too.
    [[nodiscard]] virtual XErr write(std::string_view piece, std::size_t& done) = 0;
};

// The file operations of the configuration: the disk's, or a test's substitute.
class ConfFiles : public XfileReplacer {
 public:
    virtual ConfFileRead read(const std::string& path, std::string& content) = 0;

    // Creates or empties a file, with its missing folders. `output` is null after a failure.
    [[nodiscard]] virtual XErr create(const std::string& path,
                                      std::unique_ptr<ConfOutput>& output) = 0;
};

// The disk.
ConfFiles& confDiskFiles();

#endif
