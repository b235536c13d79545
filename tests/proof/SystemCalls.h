#ifndef TESTS_PROOF_SYSTEMCALLS_H
#define TESTS_PROOF_SYSTEMCALLS_H

#include <string>
#include <vector>

// Faults in this program's calls of Windows that work on files and locks.

// Calls are counted from 0 since arm().
enum class Fault {
    None,
    ErrorOnce,      // the call does nothing and fails
    ErrorForEver,   // so does every later one but the release of a lock: the disk fails
    DeniedOnce,     // the call does nothing and fails with "access denied"
    DeniedForEver,  // so does every later call of the same function
    DieBefore,      // the process ends before the call
    DieHalfway,     // the process ends after half of a write; else like DieBefore
    DieAfter,       // the process ends after the call
};

struct FaultAt {
    Fault fault = Fault::None;
    int call = -1;
};

// If two faults are for the same call, the later one in the list counts.
void arm(std::vector<FaultAt> faults);

// Ends the faults. Returns the names of the functions that were called, in order.
std::vector<std::string> disarm();

// An operation since record() that decides what is on the disk afterwards.
struct FileOperation {
    enum Kind { Create, Write, Flush, Move, Delete } kind;
    std::string path;
    std::string data;  // of a write: the bytes; of a move: the destination
};

void record();
std::vector<FileOperation> recorded();

#endif
