// The commit: lock, load again, lay the pending changes over it, write a temporary file, flush,
// replace, unlock.
#include <memory>
#include <mutex>
#include <string>
#include <utility>

#include "conf/Conf.h"
#include "conf/ConfLoad.h"
#include "conf/ConfLog.h"
#include "conf/ConfStore.h"
#include "conf/ConfText.h"
#include "conf/ConfViewText.h"
#include "xpl/Xfence.h"

namespace {

// The temporary file of a commit: closed and deleted unless it was moved into place.
class TemporaryFile {
 public:
    TemporaryFile(ConfFiles& files, std::string path) : files_(files), path_(std::move(path)) {}
    ~TemporaryFile() {
        if (!exists_) return;
        output_.reset();
        // Without memory for its path the file stays: the next commit takes its place.
        xfence(kLog, "confCommitToFile", false, [this] {
            files_.remove(path_);
            return true;
        });
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    [[nodiscard]] XErr create() {
        exists_ = true;  // assume so: create() may throw after creating the file
        const XErr err = files_.create(path_, output_);
        exists_ = err == XERR_SUCCESS;
        return err;
    }

    ConfOutput& output() { return *output_; }

    // Closes the file, which cannot fail, and moves it.
    [[nodiscard]] XErr moveOnto(const std::string& path) {
        output_.reset();
        const XErr err = files_.replace(path_, path);
        exists_ = err != XERR_SUCCESS;
        return err;
    }

 private:
    ConfFiles& files_;
    std::string path_;
    std::unique_ptr<ConfOutput> output_;
    bool exists_ = false;
};

// The first line that did not reach the file whole.
std::string lineAt(const std::string& text, std::size_t done) {
    const std::size_t before = done == 0 ? std::string::npos : text.rfind('\n', done - 1);
    const std::size_t start = before == std::string::npos ? 0 : before + 1;
    return text.substr(start, text.find('\n', start) + 1 - start);
}

XErr flush(ConfOutput& output, const std::string& text) {
    std::size_t done = 0;
    const XErr err = output.write(text, done);
    if (err != XERR_SUCCESS) {
        XLOG_E(kLog, "xfileWrite failed for %s, err = %d [%s]", lineAt(text, done).c_str(), err,
               xerrName(err).c_str());
    }
    return err;
}

XErr refuse(const ConfRefusedEntry& entry) {
    XLOG_E(kLog, "invalid conf entry %s=\"%s\", prop len = %d, max len = %d", entry.key.c_str(),
           entry.value.c_str(), confLineLength(entry.key, entry.value),
           static_cast<int>(CONF_LINE_SIZE));
    return entry.err;
}

void applyPending(ConfStore& store) XTS_REQUIRES(store.lock) {
    store.view.mergeChanges();
    for (const std::string& key : store.deprecated) {
        store.view.value(confFindKey(store.catalogue, key)).erase();
    }
}

// The steps that end with the temporary file deleted when one fails.
XErr fillAndMove(ConfStore& store, TemporaryFile& temporary, const std::string& path)
    XTS_REQUIRES(store.lock) {
    std::string text;  // of the file, then of the one that takes its place
    if (const XErr err = confLoad(store, text); err != XERR_SUCCESS) return err;
    applyPending(store);
    const auto refused = confWriteView(store.view, text);
    // The lines before one that must not be written come first.
    if (const XErr err = flush(temporary.output(), text); err != XERR_SUCCESS) return err;
    if (refused) return refuse(*refused);
    const XErr err = temporary.moveOnto(path);
    if (err != XERR_SUCCESS) {
        XLOG_E(kLog, "xfileMove failed, err = %d [%s]", err, xerrName(err).c_str());
    }
    return err;
}

}  // namespace

XErr confCommit(ConfStore& store) {
    std::string path;
    bool nothing = false;
    {
        const std::lock_guard<std::mutex> guard(store.lock);
        nothing = !store.view.hasChanges();
        path = store.path;
    }
    if (nothing) {
        XLOG_D(kLog, "No changes in conf file, so nothing to commit.");
        return XERR_SUCCESS;
    }
    return confCommitToFile(store, path);
}

XErr confCommitToFile(ConfStore& store, const std::string& path) {
    XLOG_I(kLog, "confCommitToFile args: %s", path.c_str());
    const std::lock_guard<std::mutex> guard(store.lock);
    const std::lock_guard<XmutexNamed> otherProcesses(store.fileLock);
    TemporaryFile temporary(store.files, path + "-temp");
    if (const XErr err = temporary.create(); err != XERR_SUCCESS) {
        XLOG_E(kLog, "%s: xfileOpen failed, err = %d [%s]", "confCommitToFile", err,
               xerrName(err).c_str());
        return err;
    }
    return fillAndMove(store, temporary, path);
}
