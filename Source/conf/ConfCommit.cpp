// The commit: lock, reload, merge the pending changes, write a temporary file, flush, replace,
// unlock.
#include <cstddef>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "conf/Conf.h"
#include "conf/ConfFiles.h"
#include "conf/ConfLoad.h"
#include "conf/ConfStore.h"
#include "conf/ConfText.h"
#include "conf/ConfViewText.h"
#include "xpl/Xattributes.h"
#include "xpl/Xbytes.h"
#include "xpl/XcatchAll.h"
#include "xpl/Xerr.h"
#include "xpl/XmutexNamed.h"
#include "xpl/XsharedMutex.h"
#include "xpl/XtemporaryFile.h"

namespace {

// The first line that was not written completely.
std::string lineAt(const std::string& text, std::size_t done) {
    const std::size_t before = done == 0 ? std::string::npos : text.rfind('\n', done - 1);
    const std::size_t start = before == std::string::npos ? 0 : before + 1;
    return text.substr(start, text.find('\n', start) + 1 - start);
}

XErr flush(ConfOutput& output, const std::string& text) {
    std::size_t done = 0;
    const XErr err = output.write(text, done);
    if (err != XERR_SUCCESS) {
        XLOG_E(kConfLog, "xfileWrite failed for %s, err = %d [%s]", lineAt(text, done).c_str(), err,
               xerrName(err).c_str());
    }
    return err;
}

XErr refuse(const ConfRefusedEntry& entry) {
    XLOG_E(kConfLog, "invalid conf entry %s=\"%s\", prop len = %d, max len = %d", entry.key.c_str(),
           entry.value.c_str(), confLineLength(entry.key, entry.value),
           static_cast<int>(CONF_LINE_SIZE));
    return entry.err;
}

void applyPending(ConfStore& store) XTS_REQUIRES(store.lock, store.viewLock) {
    store.view.mergeChanges();
    for (const std::string& key : store.deprecated) {
        store.view.value(confFindKey(store.catalogue, key)).erase();
    }
}

XErr createTemporary(ConfFiles& files, XtemporaryFile& temporary,
                     std::unique_ptr<ConfOutput>& output) {
    temporary.setExists(true);
    const XErr err = files.create(temporary.path(), output);
    temporary.setExists(err == XERR_SUCCESS);
    return err;
}

// Applies the file's values, merges the pending changes and makes the new text, all in one critical
// section: a read sees none or all of it, and a later set stays pending.
XErr merge(ConfStore& store, std::string& text, std::optional<ConfRefusedEntry>& refused)
    XTS_REQUIRES(store.lock) {
    std::optional<ConfBadLine> bad;
    {
        const std::lock_guard<XsharedMutex> changing(store.viewLock);
        bad = confApplyFile(store, text);
        if (!bad) {
            applyPending(store);
            refused = confWriteView(store.view, text);
        }
    }
    return confReport(bad);
}

// The steps after which the temporary file is deleted when one fails.
XErr fillAndMove(ConfStore& store, XtemporaryFile& temporary, std::unique_ptr<ConfOutput> output,
                 const std::string& path) XTS_REQUIRES(store.lock) {
    std::string text;  // of the old file, then of the new one
    std::optional<ConfRefusedEntry> refused;
    if (const XErr err = confReadFile(store, text); err != XERR_SUCCESS) return err;
    if (const XErr err = merge(store, text, refused); err != XERR_SUCCESS) return err;
    // The lines before a refused one are still written.
    if (const XErr err = flush(*output, text); err != XERR_SUCCESS) return err;
    if (refused) return refuse(*refused);
    output.reset();  // closes the file, which cannot fail
    const XErr err = temporary.moveOnto(path);
    if (err != XERR_SUCCESS) {
        XLOG_E(kConfLog, "xfileMove failed, err = %d [%s]", err, xerrName(err).c_str());
    }
    return err;
}

XErr commitTo(ConfStore& store, const std::string& path) XTS_REQUIRES(store.lock) {
    const XnamedGuard otherProcesses(store.fileLock, kConfLog, "confCommitToFile");
    // A temporary file that is left behind does no harm: the next commit overwrites it.
    XtemporaryFile temporary(store.files, path + "-temp", kConfLog, "confCommitToFile");
    std::unique_ptr<ConfOutput> output;
    if (const XErr err = createTemporary(store.files, temporary, output); err != XERR_SUCCESS) {
        XLOG_E(kConfLog, "%s: xfileOpen failed, err = %d [%s]", "confCommitToFile", err,
               xerrName(err).c_str());
        return err;
    }
    return fillAndMove(store, temporary, std::move(output), path);
}

void logCommit(const std::string& path) {
    XLOG_I(kConfLog, "confCommitToFile args: %s", path.c_str());
}

}  // namespace

// Checks for changes under the lock. Otherwise two concurrent commits could both write, or one
// could report success while the other is still writing.
XErr confCommit(ConfStore& store) {
    const std::lock_guard<std::mutex> guard(store.lock);
    if (!confHasPendingChanges(store)) {
        XLOG_D(kConfLog, "No changes in conf file, so nothing to commit.");
        return XERR_SUCCESS;
    }
    logCommit(store.path);
    return commitTo(store, store.path);
}

XErr confCommitToFile(ConfStore& store, const std::string& path) {
    logCommit(path);
    const std::lock_guard<std::mutex> guard(store.lock);
    return commitTo(store, path);
}
