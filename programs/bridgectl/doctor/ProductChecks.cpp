// Checks of the product's registry values, folders and files.
#include <bridge/bridge.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

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

// A front end rotates the log when it starts. A log of this size has not been rotated for a long
// time.
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

bool isAbsolute(const std::string& path) {
    const bool isOnShare = path.rfind("\\\\", 0) == 0;
    const bool hasDrive = path.size() > 1 && path[1] == ':';
    return isOnShare || (hasDrive && (path.size() == 2 || path[2] == '\\' || path[2] == '/'));
}

// What is wrong with a value itself. Empty if it is fine.
std::string flawOf(const char* value) {
    if (registryValueState(value) == RegistryValue::Missing) return "is missing";
    if (registryValueState(value) == RegistryValue::OtherType) return "is not a string (REG_SZ)";
    const std::string text = textOf(value);
    if (text.empty()) return "is empty";
    const bool isFolder = std::string_view(value) != "Version";
    return isFolder && !isAbsolute(text) ? "is not an absolute path (" + text + ")" : "";
}

Finding versionFinding() {
    const std::string version = textOf("Version");
    if (version == BRIDGE_VERSION_TEXT) return ok("registry", "\"Version\" is " + version);
    return problem("registry",
                   "\"Version\" is " + version +
                       ", but this library is " BRIDGE_VERSION_TEXT ": the launcher does not start",
                   "install the library and the product in the same version");
}

Finding installFinding() {
    const std::string folder = textOf("InstallDir");
    if (folder.back() != '\\') {
        return problem("registry", "\"InstallDir\" does not end in \"\\\": " + folder,
                       "add the \"\\\": the library appends program names to it");
    }
    for (const char* program : {"QX-Player.exe", "QX-MultiInstanceManager.exe"}) {
        if (xfileExists(folder + program) == XERR_SUCCESS) continue;
        return problem("registry", "\"InstallDir\" has no " + std::string(program) + ": " + folder,
                       "reinstall the product");
    }
    return ok("registry", "\"InstallDir\" is " + folder);
}

Finding dataFinding() {
    return ok("registry", "\"UserDefinedDir\" is " + textOf("UserDefinedDir"));
}

// Tests whether this user can create files, by creating one.
XErr tryFile(const std::string& folder) {
    const std::string path = folder + "\\bridgectl-" + std::to_string(thisProcess()) + ".tmp";
    Xfile file;
    const XErr err = xfileOpen(file, path, XfileMode::WriteNew, XfileSharing::Private);
    xfileClose(file);
    return err == XERR_SUCCESS ? xfileDelete(path) : err;
}

Finding folderFinding(const char* check, const std::string& folder) {
    if (!isFolder(folder)) {
        return problem(
            check, folder + " does not exist",
            "create it, or correct the registry: " + registryValueName("UserDefinedDir"));
    }
    if (const XErr err = tryFile(folder); err != XERR_SUCCESS) {
        return problem(
            check, "cannot create files in " + folder + ": " + statusText(err),
            "as administrator: icacls \"" + folder + "\" /grant *S-1-5-32-545:(OI)(CI)M");
    }
    return ok(check, folder + ", writable by " + joined(writersOf(folder), ", "));
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
            path + " cannot be opened: " + statusText(err) + ": front ends end when they start",
            "let every user write it, or delete it");
    }
    const std::string text = path + " has " + std::to_string(size) + " bytes";
    if (size > kHugeLog) {
        return problem("log", text, "end all front ends: the next one that starts rotates it");
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
                  {"InstallDir", "front ends end when they start a program", installFinding},
                  {"UserDefinedDir", "front ends do not find their files", dataFinding}};
    Findings findings;
    for (const auto& [value, effect, look] : values) {
        const std::string flaw = flawOf(value);
        findings.push_back(
            flaw.empty()
                ? look()
                : problem("registry", "\"" + std::string(value) + "\" " + flaw + ": " + effect,
                          "reinstall the product, or set it: " + registryValueName(value)));
    }
    return findings;
}

Findings folderFindings(const std::string& logPath) {
    if (!flawOf("UserDefinedDir").empty()) return {};
    std::string data = utlGetDataDir();
    data.pop_back();  // the separator
    Findings findings{folderFinding("data folder", data)};
    // Even with --log-file: other front ends log to this folder.
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
                        "reinstall the product, or restore the file")};
    }
    Findings findings = configurationFindings(content);
    XfileAttributes attributes;
    if (xfileAttributes(path, attributes) == XERR_SUCCESS && attributes.isReadOnly) {
        findings.push_back(problem(check, path + " is read-only: no commit succeeds",
                                   "attrib -r \"" + path + "\""));
    }
    if (isFolder(path + "-temp")) {
        findings.push_back(problem(check, path + "-temp is a folder: no commit succeeds",
                                   "remove it: commits create a file of this name"));
    }
    if (!findings.empty()) return findings;
    const std::size_t instances = Configuration(content).instances().size();
    return {ok(check, path + " can be read, instances: " + std::to_string(instances))};
}
