// Start-up of the platform layer.
#include "xpl/Xpl.h"

#include "xpl/Xerr.h"
#include "xpl/Xfile.h"
#include "xpl/Xsystem.h"

namespace {

// A failed move does not stop the start: the log then keeps growing.
void rotateLog(const std::string& path) {
    std::int64_t size = 0;
    if (xfileSizeOfPath(path, size) != XERR_SUCCESS || size < XPL_LOG_ROTATE_SIZE) return;
    static_cast<void>(xfileMove(path + ".1", path + ".2"));
    static_cast<void>(xfileMove(path, path + ".1"));
}

}  // namespace

XErr xplLibInit(const XlogLogger* logger, const std::string& logFilePath) {
    xsystemUseUtf8();
    rotateLog(logFilePath);
    return xlogLibInit(logger, logFilePath);
}
