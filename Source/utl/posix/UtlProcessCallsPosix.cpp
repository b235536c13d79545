// The calls of a system with /proc.
#include <dirent.h>
#include <unistd.h>

#include <cstdlib>
#include <memory>

#include "utl/UtlProcessCalls.h"
#include "xpl/Xerr.h"
#include "xpl/Xtext.h"

namespace {

constexpr std::size_t kMaxProcesses = 1024;

struct Process {
    std::uint32_t id;
};

bool enumerate(std::vector<std::uint32_t>& ids) {
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(::opendir("/proc"), ::closedir);
    if (folder == nullptr) return false;
    ids.clear();
    while (const dirent* const entry = ::readdir(folder.get())) {
        const unsigned long id = std::strtoul(entry->d_name, nullptr, 10);
        if (id != 0 && ids.size() < kMaxProcesses) ids.push_back(static_cast<std::uint32_t>(id));
    }
    return true;
}

void* open(std::uint32_t id) { return new Process{id}; }

void close(void* process) { delete static_cast<Process*>(process); }

bool hasModules(void*) { return true; }

bool imagePath(void* process, std::wstring& path) {
    const std::string link = "/proc/" + std::to_string(static_cast<Process*>(process)->id) + "/exe";
    char text[4096];
    const ssize_t length = ::readlink(link.c_str(), text, sizeof text);
    return length > 0 &&
           xtextToWide({text, static_cast<std::size_t>(length)}, path) == XERR_SUCCESS;
}

// POSIX has neither working sets nor crash-reporting modules.
void emptyWorkingSet(void*) {}
std::int32_t registerCrashModule(const std::wstring&) { return 0; }

}  // namespace

UtlProcessCalls& utlProcessCalls() noexcept {
    static UtlProcessCalls calls{
        enumerate, open, close, hasModules, imagePath, emptyWorkingSet, registerCrashModule};
    return calls;
}
