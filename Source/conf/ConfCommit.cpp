// The commit: lock, load again, lay the pending changes over it, write a temporary file, flush,
// replace, unlock.
#include <cstddef>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>

#include "conf/Conf.h"
#include "conf/ConfFiles.h"
#include "conf/ConfLoad.h"
#include "conf/ConfLog.h"
#include "conf/ConfStore.h"
#include "conf/ConfText.h"
#include "xpl/Xattributes.h"
#include "xpl/Xbytes.h"
#include "xpl/Xerr.h"
#include "xpl/Xfence.h"
#include "xpl/XmutexNamed.h"

namespace {

constexpr std::size_t kPieceSize = std::size_t{1} << 20;

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
        exists_ = true;  // until it is known better: memory can run out behind the file's creation
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

// Writes entries in large pieces. After a failure no more is written.
class EntryWriter {
 public:
    explicit EntryWriter(ConfOutput& output)
        : output_(output), piece_(new char[kPieceSize + CONF_LINE_SIZE]), end_(piece_.get()) {}

    // The key comes in two parts, and is put together where it is to stand.
    void write(std::string_view prefix, std::string_view name, std::string_view value) {
        if (result_ != XERR_SUCCESS) return;
        if (prefix.size() + name.size() > CONF_LINE_SIZE) {
            const std::string key = std::string(prefix).append(name);
            return refuse(key, value, confCheckEntry(key, value));
        }
        char* const behindKey = xbytesCopy(xbytesCopy(end_, prefix), name);
        const std::string_view key(end_, static_cast<std::size_t>(behindKey - end_));
        const XErr err = confCheckEntry(key, value);
        if (err != XERR_SUCCESS) return refuse(std::string(key), value, err);
        end_ = confEndLine(behindKey, value);
        if (piece().size() + CONF_LINE_SIZE > kPieceSize) flush();
    }

    [[nodiscard]] XErr finish() {
        flush();
        return result_;
    }

 private:
    std::string_view piece() const {
        return {piece_.get(), static_cast<std::size_t>(end_ - piece_.get())};
    }

    void flush() {
        if (result_ != XERR_SUCCESS) return;
        std::size_t done = 0;
        result_ = output_.write(piece(), done);
        if (result_ != XERR_SUCCESS) {
            XLOG_E(kLog, "xfileWrite failed for %s, err = %d [%s]", lineAt(done).c_str(), result_,
                   xerrName(result_).c_str());
        }
        end_ = piece_.get();
    }

    void refuse(const std::string& key, std::string_view value, XErr err) {
        flush();  // a line that cannot be written comes before one that must not be
        if (result_ != XERR_SUCCESS) return;
        XLOG_E(kLog, "invalid conf entry %s=\"%s\", prop len = %d, max len = %d", key.c_str(),
               std::string(value).c_str(), confLineLength(key, value),
               static_cast<int>(CONF_LINE_SIZE));
        result_ = err;
    }

    // The first line of the piece that did not reach the file whole.
    std::string lineAt(std::size_t done) const {
        const std::string_view all = piece();
        const std::size_t before = done == 0 ? std::string::npos : all.rfind('\n', done - 1);
        const std::size_t start = before == std::string::npos ? 0 : before + 1;
        return std::string(all.substr(start, all.find('\n', start) + 1 - start));
    }

    ConfOutput& output_;
    const std::unique_ptr<char[]> piece_;
    char* end_;  // of what is in it
    XErr result_ = XERR_SUCCESS;
};

void applyPending(ConfStore& store) XTS_REQUIRES(store.lock) {
    store.values.assignAll(store.pending);
    store.pending.clear();
    for (const std::string& key : store.removals) store.values.erase(key);
    store.removals.clear();
    for (const std::string& key : store.deprecated) store.values.erase(key);
}

XErr writeValues(const ConfStore& store, ConfOutput& output) XTS_REQUIRES(store.lock) {
    EntryWriter writer(output);
    store.values.forEach(
        [&writer](std::string_view prefix, std::string_view name, const std::string& value) {
            writer.write(prefix, name, value);
        });
    return writer.finish();
}

// The steps that end with the temporary file deleted when one fails.
XErr fillAndMove(ConfStore& store, TemporaryFile& temporary, const std::string& path)
    XTS_REQUIRES(store.lock) {
    if (const XErr err = confLoad(store); err != XERR_SUCCESS) return err;
    applyPending(store);
    if (const XErr err = writeValues(store, temporary.output()); err != XERR_SUCCESS) return err;
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
        nothing = store.pending.empty() && store.removals.empty();
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
