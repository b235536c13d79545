#ifndef KIT_PROCESS_H
#define KIT_PROCESS_H

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

// The end of a program.
struct ProcessRun {
    std::uint32_t error = 0;  // Windows error of a failed start
    std::uint32_t status = 0;
    bool isLate = false;     // ended at its limit
    bool isStopped = false;  // ended by the user
    long milliseconds = 0;
};

// Runs a program in a folder, with its standard output and error in a file, and waits for its end.
// Its remaining child processes end with it.
ProcessRun runProcess(const std::vector<std::string>& command, const std::filesystem::path& folder,
                      const std::filesystem::path& output, int seconds);

// The full path of a program in PATH; empty if there is none. `name` lacks ".exe".
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

// Ends the running program and prevents further starts. For Ctrl+C.
void stopEverything();
bool isEverythingStopped();

#endif
