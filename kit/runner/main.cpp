// run_checks: checks on this machine's Windows what the documents claim. run.cmd starts it.
#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <iterator>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "Files.h"
#include "KitOptions.h"
#include "Machine.h"
#include "Manifest.h"
#include "Process.h"
#include "Record.h"
#include "Runner.h"
#include "State.h"
#include "Table.h"
#include "Zip.h"
#include "shared/Console.h"
#include "xpl/Xtext.h"

// Last: it brings <windows.h>.
#include "xpl/XwindowsLean.h"

namespace fs = std::filesystem;

const char* const programName = "run_checks";

namespace {

enum Exit { kDone = 0, kSomethingFailed = 1, kCannotRun = 2, kProductIsInstalled = 3 };

constexpr const char* kUsage =
    "usage: run.cmd [--only ID,ID...] [--no-questions]\n\n"
    "Runs the checks of checks.txt and writes a summary page and a zip into the folder results.\n"
    "--no-questions skips the checks that need an answer from the user.\n";

constexpr const char* kInstalled =
    "the product is installed here (HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantrel_nvo exists), and the "
    "checks would change its registry values.\nNothing was changed. Use a machine without it.";

// The folders that the checks use.
constexpr const char* kProgramFolders[] = {"bin", "tests",    "standins", "kit",    "include",
                                           "lib", "bindings", "examples", "source", "headers"};

// Test programs require an ASCII path, and create longer paths below it.
constexpr std::size_t kLongestPlainPath = 100;

fs::path kitFolder() {
    std::wstring program(32768, L'\0');
    const DWORD length =
        ::GetModuleFileNameW(nullptr, program.data(), static_cast<DWORD>(program.size()));
    program.resize(length);
    return fs::path(program).parent_path().parent_path();
}

fs::path environmentPath(const wchar_t* name) {
    std::wstring value(32768, L'\0');
    value.resize(::GetEnvironmentVariableW(name, value.data(), static_cast<DWORD>(value.size())));
    return {value};
}

bool isPlain(const fs::path& path) {
    const std::wstring& text = path.native();
    return text.size() <= kLongestPlainPath &&
           std::all_of(text.begin(), text.end(), [](wchar_t c) { return c > L' ' && c < 127; });
}

// A folder with a plain path in which every user can create files; empty if there is none.
fs::path plainFolder() {
    for (const wchar_t* name : {L"PUBLIC", L"ProgramData"}) {
        const fs::path folder = environmentPath(name);
        if (!folder.empty() && isPlain(folder)) return folder;
    }
    return {};
}

// A name that is unique among simultaneous runs.
std::string ownName(const std::string& what) {
    return "QXBridgeKit-" + std::to_string(::GetCurrentProcessId()) + "-" + what;
}

std::string stamp() {
    SYSTEMTIME time{};
    ::GetSystemTime(&time);
    char text[32];
    std::snprintf(text, sizeof text, "%04u%02u%02u-%02u%02u%02u", time.wYear, time.wMonth,
                  time.wDay, time.wHour, time.wMinute, time.wSecond);
    return text;
}

// Retries, because a scanner may have files open.
void removeFolder(const fs::path& folder) {
    constexpr int kTries = 20;
    std::error_code error;
    for (int i = 0; i < kTries; ++i) {
        fs::remove_all(folder, error);
        if (!error) return;
        ::Sleep(500);
    }
}

void setVariable(const wchar_t* name, const std::wstring& value) {
    ::SetEnvironmentVariableW(name, value.c_str());
}

// One run, from the state before it to its zip.
class KitRun {
 public:
    KitRun(RunnerOptions options, fs::path kit);

    int play();

 private:
    bool prepare();
    void prepareEnvironment() const;
    bool copyPrograms();
    void checkFiles();
    void runChecks();
    void restore();
    void add(Record record);
    void addOwn(const std::string& id, const std::string& decides, const std::string& fault);
    void writeResults() const;
    int conclude() const;

    const RunnerOptions options_;
    const fs::path kit_;
    const fs::path temporary_;  // the user's
    Table table_;
    Snapshot before_;
    Snapshot reportsBefore_;
    RunnerFolders folders_;
    fs::path copy_;  // of the programs; empty if they run in place
    Facts facts_;
    std::vector<std::string> taken_;
    std::vector<Record> records_;
};

KitRun::KitRun(RunnerOptions options, fs::path kit)
    : options_(std::move(options)), kit_(std::move(kit)), temporary_(fs::temp_directory_path()) {}

void KitRun::add(Record record) {
    printOut(std::string(nameOf(record.outcome)) +
             (record.reason.empty() ? "" : " (" + record.reason + ")") + "\n");
    records_.push_back(std::move(record));
}

// Adds a check of the runner itself.
void KitRun::addOwn(const std::string& id, const std::string& decides, const std::string& fault) {
    Record record;
    record.check.id = id;
    record.check.decides = decides;
    record.outcome = fault.empty() ? Outcome::Passed : Outcome::Failed;
    record.reason = fault;
    printOut("  " + id + ": ");
    add(std::move(record));
}

// Reads the table, records the state before the run and creates its folders.
bool KitRun::prepare() {
    table_ = readTable(readFile(kit_ / "checks.txt"));
    if (!table_.fault.empty()) {
        printError("checks.txt: " + table_.fault);
        return false;
    }
    before_ = stateNow(kit_, temporary_);
    reportsBefore_ = errorReportsNow();
    folders_.results = kit_ / "results" / pathOf(stamp());
    const fs::path plain = isPlain(temporary_) ? temporary_ : plainFolder();
    folders_.work = (plain.empty() ? temporary_ : plain) / ownName("work");
    folders_.programs = kit_;
    std::error_code error;
    fs::create_directories(folders_.results / "raw", error);
    if (!error) fs::create_directories(folders_.work, error);
    if (error) printError("cannot write to " + textOf(kit_) + ": unpack the kit elsewhere");
    return !error;
}

// Redirects temporary files into the work folder, and suppresses error dialogs.
void KitRun::prepareEnvironment() const {
    ::SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
    setVariable(L"TEMP", folders_.work.native());
    setVariable(L"TMP", folders_.work.native());
    setVariable(L"QX_STANDIN_CLIENTS", L"none");
    setVariable(L"GTEST_COLOR", L"no");
    setVariable(L"PYTHONDONTWRITEBYTECODE", L"1");  // its bytecode would be written into the kit
}

bool KitRun::copyPrograms() {
    const fs::path base = plainFolder();
    if (base.empty()) return false;
    copy_ = base / ownName("programs");
    return std::all_of(std::begin(kProgramFolders), std::end(kProgramFolders),
                       [&](const char* name) {
                           return !fs::exists(kit_ / name) || copyFolder(kit_ / name, copy_ / name);
                       });
}

void KitRun::checkFiles() {
    const std::vector<ManifestFile> files = readManifest(readFile(kit_ / "SHA256SUMS"));
    const std::vector<FileFault> faults = compareFiles(
        files, [&](const std::string& path) { return fileDigest(kit_ / pathOf(path)); });
    std::string text = files.empty() ? "SHA256SUMS is missing or damaged" : "";
    for (const FileFault& fault : faults) {
        taken_.push_back(fault.path);
        text += (text.empty() ? "" : "\n") + fault.path + ": " + fault.what;
    }
    addOwn("files", "Whether all files of the kit are present and unchanged", text);
}

void KitRun::runChecks() {
    const Runner runner(options_, folders_,
                        {isWine(), isElevated(), canWriteMachineKeys(), taken_});
    for (const Check& check : table_.checks) {
        if (isEverythingStopped()) return;
        if (!runner.isWanted(check)) continue;
        printOut("  " + check.id + ": ");
        add(runner.run(check));
        writeFile(folders_.results / "records.jsonl", [&] {
            std::string text;
            for (const Record& record : records_) text += recordLines(record);
            return text;
        }());
    }
}

void KitRun::restore() {
    removeFolder(folders_.work);
    if (!copy_.empty()) removeFolder(copy_);
    removeTestKeys(before_);
    std::string text;
    for (const std::string& line : differences(before_, stateNow(kit_, temporary_))) {
        text += (text.empty() ? "" : "\n") + line;
    }
    addOwn("restored", "Whether registry and folders are unchanged", text);
    for (const std::string& line : differences(reportsBefore_, errorReportsNow())) {
        facts_.emplace_back("error report of Windows", line);
    }
}

void KitRun::writeResults() const {
    std::string lines;
    for (const Record& record : records_) lines += recordLines(record);
    writeFile(folders_.results / "records.jsonl", lines);
    writeFile(folders_.results / "machine.json", factsText(facts_));
    writeFile(folders_.results / "summary.html", summaryPage(records_, facts_));
    writeFile(folders_.results / "SHA256SUMS", readFile(kit_ / "SHA256SUMS"));
    std::vector<ZipEntry> entries;
    std::error_code error;
    for (fs::recursive_directory_iterator at(folders_.results, error), end; at != end;
         at.increment(error)) {
        if (error) break;
        if (at->is_directory()) continue;
        const fs::path name = fs::relative(at->path(), folders_.results.parent_path());
        entries.push_back({xtextToUtf8(name.generic_wstring()), readFile(at->path())});
    }
    fs::path zip = folders_.results;
    zip += ".zip";
    writeFile(zip, zipArchive(entries));
    printOut("\nSummary: " + textOf(folders_.results / "summary.html") +
             "\nTo send back: " + textOf(zip) + "\n");
}

int KitRun::conclude() const {
    const bool hasFailed = std::any_of(records_.begin(), records_.end(), [](const Record& record) {
        return record.outcome == Outcome::Failed;
    });
    return hasFailed || isEverythingStopped() ? kSomethingFailed : kDone;
}

int KitRun::play() {
    if (!prepare()) return kCannotRun;
    facts_ = machineFacts(kit_, temporary_);
    checkFiles();
    if (isPlain(kit_) || copyPrograms()) {
        if (!copy_.empty()) folders_.programs = copy_;
        prepareEnvironment();
        runChecks();
    } else {
        addOwn("programs", "Whether there is a folder with a plain path for the programs",
               "neither PUBLIC nor ProgramData can be used");
    }
    setVariable(L"TEMP", temporary_.native());
    restore();
    writeResults();
    return conclude();
}

}  // namespace

int main() {
    const std::optional<KitOptions> options = readKitOptions(commandLineArguments());
    if (!options || options->help) {
        printOut(kUsage);
        return options ? kDone : kCannotRun;
    }
    if (isProductInstalled()) {
        printError(kInstalled);
        return kProductIsInstalled;
    }
    onConsoleEnd(stopEverything);
    return KitRun(options->runner, kitFolder()).play();
}
