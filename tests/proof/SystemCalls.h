#ifndef TESTS_PROOF_SYSTEMCALLS_H
#define TESTS_PROOF_SYSTEMCALLS_H

#include <string>
#include <vector>

// Stands between this program and Windows, in the program's import table, for the calls that work
// on files and locks.

// What becomes of one call. Calls are counted from 0 since arm().
enum class Fault {
    None,
    ErrorOnce,      // that call does nothing and fails
    ErrorForEver,   // so does every later one but the release of a lock: it is the disk that fails
    DeniedOnce,     // that call does nothing and meets "access denied"
    DeniedForEver,  // so does every later call of the same function
    DieBefore,      // the process ends before the call
    DieHalfway,     // of a write, half is done before the process ends; else like DieBefore
    DieAfter,       // the process ends behind it
};

struct FaultAt {
    Fault fault = Fault::None;
    int call = -1;
};

// Where two of them meet at one call, the later one counts.
void arm(std::vector<FaultAt> faults);

// Back to normal; the names of the functions that were called, in order.
std::vector<std::string> disarm();

// What was done to files since record(), as far as it decides what is on the disk afterwards.
struct FileOperation {
    enum Kind { Create, Write, Flush, Move, Delete } kind;
    std::string path;
    std::string data;  // of a write: the bytes; of a move: the destination
};

void record();
std::vector<FileOperation> recorded();

#endif
