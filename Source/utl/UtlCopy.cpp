// Uses Qt for folders and files, since it handles paths of any length.
#include "utl/UtlCopy.h"

#include <QDir>
#include <QFile>

#include "xpl/Xfile.h"
#include "xpl/Xlog.h"

namespace {

constexpr XlogModule kLog{XlogTag::UTL, "Source/utl/Utl"};

QString qtPath(const std::string& path) { return QString::fromStdString(xfileSystemPath(path)); }

// As UTF-16: not every file name of Windows can be expressed in UTF-8.
QString joined(const std::string& folder, const QString& name) {
    return qtPath(folder) + QDir::separator() + name;
}

// Replaces an existing folder with an empty one. Errors are ignored here: copying files into the
// folder then fails and logs them.
void makeEmptyFolder(const std::string& folder) {
    QDir existing(qtPath(folder));
    if (existing.exists()) existing.removeRecursively();
    QDir().mkpath(qtPath(folder));
}

// The order is by name, ignoring case: with QDir::NoSort the QDir object's own sort order applies.
void copySubfolders(const QDir& folder, const std::string& source, const std::string& destination) {
    for (const QString& name : folder.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::NoSort)) {
        const std::string target = destination + QDir::separator().toLatin1() + name.toStdString();
        makeEmptyFolder(target);
        // Failures in sub-folders are logged, but do not count.
        static_cast<void>(utlCopyRecursive(source + "/" + name.toStdString(), target));
    }
}

XErr copyFiles(const QDir& folder, const std::string& source, const std::string& destination) {
    XErr result = XERR_SUCCESS;
    for (const QString& name : folder.entryList(QDir::Files, QDir::NoSort)) {
        // Never overwrites.
        if (QFile::copy(joined(source, name), joined(destination, name))) continue;
        XLOG_W(kLog, "%s: Failed to copy file = %s", "utlCopyRecursive",
               name.toStdString().c_str());
        result = XERR_FAILURE;
    }
    return result;
}

}  // namespace

XErr utlCopyRecursive(const std::string& source, const std::string& destination) {
    const QDir folder(qtPath(source));
    if (!folder.exists()) {
        XLOG_W(kLog, "%s: source dir %s doesn't exist", "utlCopyRecursive", source.c_str());
        return XERR_SUCCESS;
    }
    copySubfolders(folder, source, destination);
    return copyFiles(folder, source, destination);
}
