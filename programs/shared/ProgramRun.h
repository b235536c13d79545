#ifndef SHARED_PROGRAMRUN_H
#define SHARED_PROGRAMRUN_H

#include <string>
#include <string_view>

#include "shared/ExitCode.h"
#include "shared/JsonValue.h"
#include "xpl/Xerr.h"

// One run of a program: where it logs, how it prints and how it ends. The programs' sessions are
// runs.
class ProgramRun {
 public:
    ProgramRun() = default;
    ProgramRun(const ProgramRun&) = delete;
    ProgramRun& operator=(const ProgramRun&) = delete;

    std::string logFile;  // empty: the product's log
    bool json = false;    // results are printed as JSON
    bool quiet = false;   // nothing is printed but results and errors

    ExitCode exitCode = ExitCode::Success;

    // Prints a result on standard output. False, after an error, when it cannot be written: as with
    // every function below.
    bool print(std::string_view text);

    // The same, indented.
    bool printJson(const JsonValue& value);

    // Says that the work is done, in one of the two forms.
    bool confirm(const std::string& text, const JsonValue& value);

    // A line on standard error that is no error.
    void notice(const std::string& text) const;

    // Prints an error, and in a line of its own what to do about it where that is known, and sets
    // the exit code; false, so that callers can return it. With `json` the same goes to standard
    // output too, as one line: an object with "code", "name", "text" and "hint".
    bool fail(ExitCode code, const std::string& message, const std::string& hint = {});

    // The same for a status of the library.
    bool failStatus(ExitCode code, const std::string& what, XErr status,
                    const std::string& hint = {});

    // The error of an instance that is not known.
    bool failInstance(std::string_view instance, const std::string& hint = {});

    // False, after an error, when the registry names no install folder. Asking for it then would
    // end the process.
    bool requireInstallFolder();

    std::string logPath() const;

 protected:
    ~ProgramRun() = default;

    // False after an error. A log that cannot be opened would end the process without a word.
    bool requireLog();
};

// A value of the product's key in the registry, as people look for it.
std::string registryValueName(const std::string& value);

// Where the data folder comes from, for errors about what should be in it.
std::string dataFolderHint();

#endif
