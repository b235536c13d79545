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
#include "conf/ConfViewText.h"
#include "xpl/Xattributes.h"
#include "xpl/Xbytes.h"
#include "xpl/XcatchAll.h"
#include "xpl/Xerr.h"
#include "xpl/XmutexNamed.h"
#include "xpl/XtemporaryFile.h"

namespace {

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

XErr createTemporary(ConfFiles& files, XtemporaryFile& temporary,
                     std::unique_ptr<ConfOutput>& output) {
    temporary.setExists(true);
    const XErr err = files.create(temporary.path(), output);
    temporary.setExists(err == XERR_SUCCESS);
    return err;
}

// The steps that end with the temporary file deleted when one fails.
XErr fillAndMove(ConfStore& store, XtemporaryFile& temporary, std::unique_ptr<ConfOutput> output,
                 const std::string& path) XTS_REQUIRES(store.lock) {
    std::string text;  // of the file, then of the one that takes its place
    if (const XErr err = confLoad(store, text); err != XERR_SUCCESS) return err;
    applyPending(store);
    const auto refused = confWriteView(store.view, text);
    // The lines before one that must not be written come first.
    if (const XErr err = flush(*output, text); err != XERR_SUCCESS) return err;
    if (refused) return refuse(*refused);
    output.reset();  // closes the file, which cannot fail
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
    // One that is left takes no harm: the next commit takes its place.
    XtemporaryFile temporary(store.files, path + "-temp", kLog, "confCommitToFile");
    std::unique_ptr<ConfOutput> output;
    if (const XErr err = createTemporary(store.files, temporary, output); err != XERR_SUCCESS) {
        XLOG_E(kLog, "%s: xfileOpen failed, err = %d [%s]", "confCommitToFile", err,
               xerrName(err).c_str());
        return err;
    }
    return fillAndMove(store, temporary, std::move(output), path);
}
