#ifndef KIT_PROCESS_H
#define KIT_PROCESS_H

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

// One run of a program.
struct ProcessRun {
    std::uint32_t error = 0;  // the Windows error of a start that failed
    std::uint32_t status = 0;
    bool isLate = false;     // it was ended at its limit
    bool isStopped = false;  // it was ended since the user wants the run to end
    long milliseconds = 0;
};

// Runs a program to its end, in a folder, with its standard output and error in a file. What it has
// started and is still there ends with it.
ProcessRun runProcess(const std::vector<std::string>& command, const std::filesystem::path& folder,
                      const std::filesystem::path& output, int seconds);

// The full path of a program of PATH, without its ".exe" in the name; empty when there is none.
std::string programOnPath(const std::string& name);

using Variables = std::vector<std::pair<std::string, std::string>>;

// Sets variables of this process's environment, which the programs that it starts inherit. The
// destructor restores them.
class ScopedVariables {
 public:
    explicit ScopedVariables(const Variables& variables);
    ~ScopedVariables();
    ScopedVariables(const ScopedVariables&) = delete;
    ScopedVariables& operator=(const ScopedVariables&) = delete;

 private:
    struct Earlier {
        std::wstring name;
        std::optional<std::wstring> value;
    };
    std::vector<Earlier> earlier_;
};

// Ends what runs, and lets nothing start any more: for Ctrl-C.
void stopEverything();
bool isEverythingStopped();

#endif
