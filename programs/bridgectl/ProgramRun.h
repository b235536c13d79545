#ifndef BRIDGECTL_PROGRAMRUN_H
#define BRIDGECTL_PROGRAMRUN_H

#include <string>
#include <string_view>

#include "ExitCode.h"
#include "xpl/Xerr.h"

// One run of a program: where it logs and how it ends. The programs' sessions are runs.
class ProgramRun {
 public:
    ProgramRun() = default;
    ProgramRun(const ProgramRun&) = delete;
    ProgramRun& operator=(const ProgramRun&) = delete;

    std::string logFile;  // empty: the product's log

    ExitCode exitCode = ExitCode::Success;

    // Prints an error and sets the exit code; false, so that callers can return it.
    bool fail(ExitCode code, const std::string& message);

    // The same for a status of the library.
    bool failStatus(ExitCode code, const std::string& what, XErr status);

    // The error of an instance that is not known.
    bool failInstance(std::string_view instance);

    // False, after an error, when the registry names no install folder. Asking for it then would
    // end the process.
    bool requireInstallFolder();

 protected:
    ~ProgramRun() = default;

    std::string logPath() const;

    // False after an error. A log that cannot be opened would end the process without a word.
    bool requireLog();
};

#endif
