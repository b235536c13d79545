// Registry, folders and files of the product.
#include <bridge/bridge.h>

#include <cstddef>
#include <cstdint>
#include <string>

#include "conf/ConfFiles.h"
#include "doctor/Checks.h"
#include "doctor/ConfigurationFindings.h"
#include "doctor/System.h"
#include "shared/Joined.h"
#include "shared/ProgramRun.h"
#include "utl/UtlFolders.h"
#include "utl/UtlRegistry.h"
#include "xpl/Xerr.h"
#include "xpl/Xfile.h"
#include "xpl/Xpl.h"

namespace {

// A log of this size has not been rotated for long, which happens when a front end starts.
constexpr std::int64_t kHugeLog = 10 * XPL_LOG_ROTATE_SIZE;

Finding ok(const char* check, const std::string& found) {
    return {FindingLevel::Ok, check, found, {}};
}

Finding problem(const char* check, const std::string& found, const std::string& todo) {
    return {FindingLevel::Problem, check, found, todo};
}

std::string statusText(XErr status) { return std::to_string(status) + " " + xerrName(status); }

std::string textOf(const char* value) {
    return utlRegistryString(UtlRegistryRoot::LocalMachine, UTL_PRODUCT_KEY, value, {});
}

bool isFolder(const std::string& path) {
    XfileAttributes attributes;
    return xfileAttributes(path, attributes) == XERR_SUCCESS && attributes.isFolder;
}

// What is wrong with a value by itself; an empty text when nothing is.
std::string flawOf(const char* value) {
    if (registryValueState(value) == RegistryValue::Missing) return "is missing";
    if (registryValueState(value) == RegistryValue::OtherType) return "is no text (REG_SZ)";
    return textOf(value).empty() ? "is empty" : "";
}

Finding versionFinding() {
    const std::string version = textOf("Version");
    if (version == BRIDGE_VERSION_TEXT) return ok("registry", "\"Version\" is " + version);
    return problem("registry",
                   "\"Version\" is " + version +
                       " and this library " BRIDGE_VERSION_TEXT ": the launcher does not start",
                   "install the library and the product of one version");
}

Finding installFinding() {
    const std::string folder = textOf("InstallDir");
    if (folder.back() != '\\') {
        return problem("registry", "\"InstallDir\" does not end in \"\\\": " + folder,
                       "add the \"\\\": names of programs are put right behind it");
    }
    for (const char* program : {"QX-Player.exe", "QX-MultiInstanceManager.exe"}) {
        if (xfileExists(folder + program) == XERR_SUCCESS) continue;
        return problem("registry", "\"InstallDir\" has no " + std::string(program) + ": " + folder,
                       "install the product again");
    }
    return ok("registry", "\"InstallDir\" is " + folder);
}

Finding dataFinding() {
    return ok("registry", "\"UserDefinedDir\" is " + textOf("UserDefinedDir"));
}

// Whether this user may make a file, by making one.
XErr tryFile(const std::string& folder) {
    const std::string path = folder + "\\bridgectl-" + std::to_string(thisProcess()) + ".tmp";
    Xfile file;
    const XErr err = xfileOpen(file, path, XfileMode::WriteNew, XfileSharing::Private);
    xfileClose(file);
    return err == XERR_SUCCESS ? xfileDelete(path) : err;
}

Finding folderFinding(const char* check, const std::string& folder) {
    if (!isFolder(folder)) {
        return problem(check, folder + " does not exist",
                       "make it, or correct the registry: " + registryValueName("UserDefinedDir"));
    }
    if (const XErr err = tryFile(folder); err != XERR_SUCCESS) {
        return problem(
            check, "you cannot write into " + folder + ": " + statusText(err),
            "as administrator: icacls \"" + folder + "\" /grant *S-1-5-32-545:(OI)(CI)M");
    }
    return ok(check, folder + ", written by " + joined(writersOf(folder), ", "));
}

Finding logFinding(const std::string& path) {
    std::int64_t size = 0;
    if (xfileExists(path) != XERR_SUCCESS) return ok("log", path + " does not exist yet");
    Xfile file;
    XErr err = xfileOpen(file, path, XfileMode::Append, XfileSharing::Private);
    if (err == XERR_SUCCESS) err = xfileSize(file, size);
    if (err != XERR_SUCCESS) {
        return problem(
            "log",
            path + " cannot be opened: " + statusText(err) + ": every front end ends at its start",
            "give every user the right to write it, or delete it");
    }
    const std::string text = path + " has " + std::to_string(size) + " bytes";
    if (size > kHugeLog) {
        return problem("log", text, "end all front ends: the next start rotates it");
    }
    return ok("log", text);
}

}  // namespace

Findings registryFindings() {
    const struct {
        const char* value;
        const char* effect;
        Finding (*look)();
    } values[] = {{"Version", "the launcher does not start", versionFinding},
                  {"InstallDir", "whoever starts a program ends", installFinding},
                  {"UserDefinedDir", "no front end finds its files", dataFinding}};
    Findings findings;
    for (const auto& [value, effect, look] : values) {
        const std::string flaw = flawOf(value);
        findings.push_back(
            flaw.empty()
                ? look()
                : problem("registry", "\"" + std::string(value) + "\" " + flaw + ": " + effect,
                          "install the product again, or write it: " + registryValueName(value)));
    }
    return findings;
}

Findings folderFindings(const std::string& logPath) {
    if (!flawOf("UserDefinedDir").empty()) return {};
    std::string data = utlGetDataDir();
    data.pop_back();  // the separator
    Findings findings{folderFinding("data folder", data)};
    // Only this library's own log needs the folder; one of --log-file is made.
    findings.push_back(folderFinding("log folder", data + "\\Logs"));
    findings.push_back(logFinding(logPath));
    return findings;
}

Findings confFileFindings(std::string& content) {
    if (!flawOf("UserDefinedDir").empty()) return {};
    const std::string path = utlGetDataDir() + "vantrel.conf";
    const char* const check = "configuration";
    if (confDiskFiles().read(path, content) != ConfFileRead::Done) {
        return {problem(check, path + " cannot be read: no front end starts",
                        "install the product again, or restore the file")};
    }
    Findings findings = configurationFindings(content);
    XfileAttributes attributes;
    if (xfileAttributes(path, attributes) == XERR_SUCCESS && attributes.isReadOnly) {
        findings.push_back(problem(check, path + " is read-only: no commit succeeds",
                                   "attrib -r \"" + path + "\""));
    }
    if (isFolder(path + "-temp")) {
        findings.push_back(problem(check, path + "-temp is a folder: no commit succeeds",
                                   "remove it: commits write a file of this name"));
    }
    if (!findings.empty()) return findings;
    const std::size_t instances = Configuration(content).instances().size();
    return {ok(check, path + " can be read, instances: " + std::to_string(instances))};
}
