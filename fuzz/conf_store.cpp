// A configuration that loads can be committed, and the committed file stays as it is when it is
// loaded and committed again.
#include <map>
#include <optional>
#include <stdexcept>
#include <string>

#include "Check.h"
#include "QuietLog.h"
#include "conf/Conf.h"
#include "conf/ConfStore.h"

namespace {

// One folder in memory.
class MemoryFiles final : public ConfFiles {
 public:
    std::map<std::string, std::string> files;

    ConfFileRead read(const std::string& path, std::string& content) override {
        const auto found = files.find(path);
        if (found == files.end()) return ConfFileRead::OpenFailed;
        content = found->second;
        return ConfFileRead::Done;
    }
    XErr create(const std::string& path, std::unique_ptr<ConfOutput>& output) override {
        files[path].clear();
        output = std::make_unique<Output>(files[path]);
        return XERR_SUCCESS;
    }
    XErr replace(const std::string& source, const std::string& destination) override {
        files[destination] = files[source];
        files.erase(source);
        return XERR_SUCCESS;
    }
    void remove(const std::string& path) override { files.erase(path); }

 private:
    class Output final : public ConfOutput {
     public:
        explicit Output(std::string& file) : file_(file) {}
        XErr write(std::string_view piece, std::size_t& done) override {
            file_.append(piece);
            done = piece.size();
            return XERR_SUCCESS;
        }

     private:
        std::string& file_;
    };
};

constexpr const char* kPath = "vantrel.conf";

const ConfCatalogue& catalogue() {
    static const ConfCatalogue& one = *new ConfCatalogue(confProductCatalogue());
    return one;
}

// The file after a commit; nothing when it cannot be loaded, or holds what must not be written.
std::optional<std::string> committed(std::string_view content) {
    MemoryFiles disk;
    disk.files[kPath] = content;
    ConfStore store(catalogue(), disk);
    store.fileLockName = "Global\\vtr_fuzz_conf";
    try {
        if (confLibInit(store, kPath, /*allowDeprecated=*/false) != XERR_SUCCESS) return {};
    } catch (const std::out_of_range&) {
        return {};
    }
    confSetString(store, "vtr.locale", "fuzz");
    if (confCommit(store) != XERR_SUCCESS) {
        check(disk.files[kPath] == content, "a failed commit leaves the file");
        check(disk.files.size() == 1, "a failed commit leaves nothing else");
        return {};
    }
    check(disk.files.size() == 1, "a commit leaves no temporary file");
    return disk.files[kPath];
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    logIntoNothing();
    const auto once = committed(textOf(data, size));
    if (!once) return 0;
    check(once->find("vtr.locale=\"fuzz\"\n") != std::string::npos, "the change is in the file");
    const auto twice = committed(*once);
    check(twice.has_value(), "a committed file can be loaded");
    check(*twice == *once, "a committed file stays as it is");
    return 0;
}
