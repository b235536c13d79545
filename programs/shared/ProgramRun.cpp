#include "shared/ProgramRun.h"

#include "shared/Console.h"
#include "shared/ExitCode.h"
#include "shared/JsonValue.h"
#include "utl/UtlFolders.h"
#include "utl/UtlRegistry.h"
#include "xpl/Xfile.h"

bool ProgramRun::print(std::string_view text) {
    return printOut(text) || fail(ExitCode::Output, "standard output cannot be written");
}

bool ProgramRun::printJson(const JsonValue& value) { return print(value.indented() + "\n"); }

bool ProgramRun::confirm(const std::string& text, const JsonValue& value) {
    if (quiet) return true;
    return json ? printJson(value) : print(text + "\n");
}

void ProgramRun::notice(const std::string& text) const {
    if (!quiet) printNotice(text);
}

bool ProgramRun::fail(ExitCode code, const std::string& message) {
    printError(message);
    exitCode = code;
    return false;
}

bool ProgramRun::failStatus(ExitCode code, const std::string& what, XErr status) {
    return fail(code, what + ": " + std::to_string(status) + " " + xerrName(status));
}

bool ProgramRun::failInstance(std::string_view instance) {
    return fail(ExitCode::UnknownName, std::string("no such instance: ").append(instance));
}

bool ProgramRun::requireInstallFolder() {
    const std::string folder =
        utlRegistryString(UtlRegistryRoot::LocalMachine, UTL_PRODUCT_KEY, "InstallDir", {});
    return !folder.empty() || fail(ExitCode::Library, "the registry names no install folder");
}

std::string ProgramRun::logPath() const { return logFile.empty() ? utlPlayerLogPath() : logFile; }

bool ProgramRun::requireLog() {
    const std::string path = logPath();
    Xfile file;
    const XErr err = xfileOpen(file, path, XfileMode::Append);
    return err == XERR_SUCCESS ||
           failStatus(ExitCode::Library, "cannot open the log file " + path, err);
}
