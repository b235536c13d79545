#ifndef UTL_UTLPROCESSCALLS_H
#define UTL_UTLPROCESSCALLS_H

#include <cstdint>
#include <string>
#include <vector>

// The system calls of trimming and crash-handler registration. Tests replace them, since a test
// cannot arrange another user's process or a failed enumeration.
struct UtlProcessCalls {
    // Ids of the running processes, at most 1024. Returns false on failure.
    bool (*enumerate)(std::vector<std::uint32_t>& ids);

    // Opens a process for the calls below; null when it cannot be opened. The caller closes the
    // handle.
    void* (*open)(std::uint32_t id);
    void (*close)(void* process);

    // Whether the process has modules that can be listed.
    bool (*hasModules)(void* process);

    // Full path of the process's image. Returns false on failure.
    bool (*imagePath)(void* process, std::wstring& path);

    // Removes as many pages as possible from the working set.
    void (*emptyWorkingSet)(void* process);

    // Registers a module with Windows Error Reporting for this process. Returns the HRESULT.
    std::int32_t (*registerCrashModule)(const std::wstring& path);
};

// The calls in use: the system's, unless a test replaces them.
UtlProcessCalls& utlProcessCalls() noexcept;

#endif
