#ifndef SHARED_PROGRAMRUN_H
#define SHARED_PROGRAMRUN_H

#include <string>
#include <string_view>

#include "shared/ExitCode.h"
#include "shared/JsonValue.h"
#include "xpl/Xerr.h"

// One run of a program: its log, its output and its exit code. The sessions of the programs derive
// from it.
class ProgramRun {
 public:
    ProgramRun() = default;
    ProgramRun(const ProgramRun&) = delete;
    ProgramRun& operator=(const ProgramRun&) = delete;

    std::string logFile;  // empty: the product's log
    bool json = false;    // results are printed as JSON
    bool quiet = false;   // nothing is printed but results and errors

    ExitCode exitCode = ExitCode::Success;

    // Prints a result on standard output. Like every function below, returns false after an error.
    bool print(std::string_view text);

    // Prints a result as indented JSON.
    bool printJson(const JsonValue& value);

    // Confirms that the work is done, as text or JSON.
    bool confirm(const std::string& text, const JsonValue& value);

    // Prints a line, not an error, on standard error.
    void notice(const std::string& text) const;

    // Prints an error, and a hint in another line if there is one, and sets the exit code. Returns
    // false for the caller to return. With `json`, also prints one line on standard output: an
    // object with "code", "name", "text" and "hint".
    bool fail(ExitCode code, const std::string& message, const std::string& hint = {});

    // The same for a result code of the library.
    bool failStatus(ExitCode code, const std::string& what, XErr status,
                    const std::string& hint = {});

    // Reports an unknown instance.
    bool failInstance(std::string_view instance, const std::string& hint = {});

    // False, after an error, if the registry has no install folder. The library would end the
    // process.
    bool requireInstallFolder();

    std::string logPath() const;

 protected:
    ~ProgramRun() = default;

    // False after an error. The library ends the process without a message if it cannot open its
    // log.
    bool requireLog();
};

// A value of the product's registry key, in the form that messages show.
std::string registryValueName(const std::string& value);

// The product's configuration file.
std::string configurationPath();

// A hint for errors about the configuration in this file.
std::string configurationHint(const std::string& path);

// A hint for errors about files in the data folder: where its path comes from.
std::string dataFolderHint();

#endif
