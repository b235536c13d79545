#ifndef TESTS_PROOF_SYSTEMCALLS_H
#define TESTS_PROOF_SYSTEMCALLS_H

#include <string>
#include <vector>

// Stands between this program and Windows, in the program's import table, for the calls that work
// on files and locks.

// What becomes of one call. Calls are counted from 0 since arm().
enum class Fault {
    None,
    ErrorOnce,     // that call does nothing and fails
    ErrorForEver,  // so does every later one
    DieBefore,     // the process ends before the call
    DieHalfway,    // of a write, half is done before the process ends; else like DieBefore
    DieAfter,      // the process ends behind it
};

void arm(Fault fault, int call);

// Back to normal; how many calls there were.
int disarm();

// What was done to files since record(), as far as it decides what is on the disk afterwards.
struct FileOperation {
    enum Kind { Create, Write, Flush, Move, Delete } kind;
    std::string path;
    std::string data;  // of a write: the bytes; of a move: the destination
};

void record();
std::vector<FileOperation> recorded();

#endif
