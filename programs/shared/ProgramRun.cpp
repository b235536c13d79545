#include "shared/ProgramRun.h"

#include "shared/Console.h"
#include "shared/ExitCode.h"
#include "shared/JsonValue.h"
#include "utl/UtlFolders.h"
#include "utl/UtlRegistry.h"
#include "xpl/Xfile.h"

namespace {

// The result can be ignored: if the output is broken, the next print() reports it.
void printErrorJson(ExitCode code, const std::string& message, const std::string& hint) {
    const JsonValue error = JsonObject{{"code", static_cast<int>(code)},
                                       {"name", exitCodeName(code)},
                                       {"text", message},
                                       {"hint", hint.empty() ? JsonValue(nullptr) : hint}};
    static_cast<void>(printOut(error.inOneLine() + "\n"));
}

}  // namespace

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

bool ProgramRun::fail(ExitCode code, const std::string& message, const std::string& hint) {
    printError(message);
    if (!hint.empty()) printError(hint);
    exitCode = code;
    if (json && code != ExitCode::Output) printErrorJson(code, message, hint);
    return false;
}

bool ProgramRun::failStatus(ExitCode code, const std::string& what, XErr status,
                            const std::string& hint) {
    return fail(code, what + ": " + std::to_string(status) + " " + xerrName(status), hint);
}

bool ProgramRun::failInstance(std::string_view instance, const std::string& hint) {
    return fail(ExitCode::UnknownName, std::string("no such instance: ").append(instance), hint);
}

bool ProgramRun::requireInstallFolder() {
    const std::string folder =
        utlRegistryString(UtlRegistryRoot::LocalMachine, UTL_PRODUCT_KEY, "InstallDir", {});
    return !folder.empty() ||
           fail(ExitCode::Library, "the registry has no install folder",
                "reinstall the product, or set it: " + registryValueName("InstallDir"));
}

std::string registryValueName(const std::string& value) {
    return std::string("HKEY_LOCAL_MACHINE\\") + UTL_PRODUCT_KEY + ", value \"" + value + "\"";
}

std::string configurationPath() { return utlGetDataDir() + "vantrel.conf"; }

std::string configurationHint(const std::string& path) {
    return "the file is " + path + "; see bridgectl doctor";
}

std::string dataFolderHint() {
    return "the data folder is in the registry: " + registryValueName("UserDefinedDir");
}

std::string ProgramRun::logPath() const { return logFile.empty() ? utlPlayerLogPath() : logFile; }

bool ProgramRun::requireLog() {
    const std::string path = logPath();
    Xfile file;
    const XErr err = xfileOpen(file, path, XfileMode::Append);
    if (err == XERR_SUCCESS) return true;
    return failStatus(ExitCode::Library, "cannot open the log file " + path, err,
                      logFile.empty() ? dataFolderHint() : "");
}
