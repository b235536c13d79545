// Trimming the memory of the product's processes, and registering its crash handler.
#include "utl/UtlProcess.h"

#include <cstdint>
#include <string>
#include <vector>

#include "utl/UtlFolders.h"
#include "utl/UtlProcessCalls.h"
#include "xpl/Xlog.h"
#include "xpl/Xtext.h"

namespace {

constexpr XlogModule kLog{XlogTag::UTL, "Source/utl/Utl"};

// A handle of a running process, or none. The destructor closes it.
class OpenProcess {
 public:
    explicit OpenProcess(std::uint32_t id) : handle_(utlProcessCalls().open(id)) {}
    ~OpenProcess() {
        if (handle_ != nullptr) utlProcessCalls().close(handle_);
    }
    OpenProcess(const OpenProcess&) = delete;
    OpenProcess& operator=(const OpenProcess&) = delete;

    bool isOpen() const { return handle_ != nullptr; }

    std::string name() const {
        std::wstring path;
        const UtlProcessCalls& calls = utlProcessCalls();
        if (!calls.hasModules(handle_) || !calls.imagePath(handle_, path)) return "<unknown>";
        return xtextToUtf8(path);
    }

    void trim() const { utlProcessCalls().emptyWorkingSet(handle_); }

 private:
    void* handle_;
};

void trimIfOurs(std::uint32_t id, const std::string& installDir) {
    const OpenProcess process(id);
    if (!process.isOpen()) return;
    const std::string name = process.name();
    if (name.find(installDir) == std::string::npos) return;
    XLOG_I(kLog, "Trimming memory for process %d:%s", static_cast<int>(id), name.c_str());
    process.trim();
}

}  // namespace

XErr utlTrimMemoryAllProcs() {
    const std::string installDir = utlGetInstallDir();
    std::vector<std::uint32_t> ids;
    if (!utlProcessCalls().enumerate(ids)) {
        XLOG_E(kLog, "utlTrimMemoryAllProcs-> EnumProcesses: failed");
        return XERR_FAILURE;
    }
    for (const std::uint32_t id : ids) trimIfOurs(id, installDir);
    return XERR_SUCCESS;
}

std::int32_t utlRegisterCrashHandler() {
    std::wstring path;
    // The folder came from UTF-16, so the conversion cannot fail.
    static_cast<void>(xtextToWide(utlGetInstallDir() + "QX-WerHandler.dll", path));
    return utlProcessCalls().registerCrashModule(path);
}
