#ifndef TESTS_PROOF_ALLOCATIONS_H
#define TESTS_PROOF_ALLOCATIONS_H

#include <cstddef>

// Replaces operator new, malloc and calloc of everything that is linked into this program. Qt does
// not survive every failure; its DLLs keep their own functions.

enum class Shortage { Once, ForEver };

// Makes the allocation with this number, from 0, fail on this thread, and with ForEver every later
// one too.
void startShortage(Shortage kind, int first);

// Ends the shortage. Returns false when no allocation failed in it.
bool endShortage();

// How many allocations have failed in shortages, on any thread.
int refusedAllocations();

// This program's malloc, to replace that of another module.
void* allocateInShortage(std::size_t size);

#endif
