#ifndef KIT_RUNNER_H
#define KIT_RUNNER_H

#include <filesystem>
#include <string>
#include <vector>

#include "Obstacle.h"
#include "Process.h"
#include "Record.h"
#include "Table.h"

// The options of the command line.
struct RunnerOptions {
    std::vector<std::string> only;  // ids of checks; empty for all
    bool questions = true;          // whether to run the checks that ask the user
};

// The folders of a run.
struct RunnerFolders {
    std::filesystem::path programs;  // the kit, or a copy of it with a plain path
    std::filesystem::path work;      // working folder and temporary files of the programs
    std::filesystem::path results;
};

// Runs checks one after another.
class Runner {
 public:
    Runner(RunnerOptions options, RunnerFolders folders, Conditions conditions);

    bool isWanted(const Check& check) const;
    Record run(const Check& check) const;

 private:
    Obstacle obstacleFor(const Check& check) const;
    Obstacle obstacleOfTool(const std::string& name) const;
    bool isAccepted(const Check& check) const;
    std::string inserted(const Check& check, const std::string& word) const;
    Variables variablesOf(const Check& check) const;
    std::vector<std::string> commandOf(const Check& check) const;
    void judge(Record& record) const;

    RunnerOptions options_;
    RunnerFolders folders_;
    Conditions conditions_;
};

#endif
