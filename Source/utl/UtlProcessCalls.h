#ifndef UTL_UTLPROCESSCALLS_H
#define UTL_UTLPROCESSCALLS_H

#include <cstdint>
#include <string>
#include <vector>

// The system calls behind trimming and crash-handler registration, and what a test puts in their
// place: other users' processes and a failed enumeration are nothing that a test can arrange.
struct UtlProcessCalls {
    // Ids of the running processes, of which there is room for 1024. False when it fails.
    bool (*enumerate)(std::vector<std::uint32_t>& ids);

    // A handle for the calls below, to be closed; null when the process cannot be opened.
    void* (*open)(std::uint32_t id);
    void (*close)(void* process);

    // Whether the process has modules that can be listed.
    bool (*hasModules)(void* process);

    // Full path of the process's image. False when it fails.
    bool (*imagePath)(void* process, std::wstring& path);

    // Removes as many pages as possible from the working set.
    void (*emptyWorkingSet)(void* process);

    // Registers a module with Windows Error Reporting for this process. The HRESULT.
    std::int32_t (*registerCrashModule)(const std::wstring& path);
};

// The calls in use: Windows' own, until a test replaces them.
UtlProcessCalls& utlProcessCalls() noexcept;

#endif
