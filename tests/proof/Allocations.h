#ifndef TESTS_PROOF_ALLOCATIONS_H
#define TESTS_PROOF_ALLOCATIONS_H

#include <cstddef>

// Stands in for the memory of this program: operator new, malloc and calloc of everything that is
// linked into it. Qt, which does not survive every failure, has its own.

enum class Shortage { Once, ForEver };

// From now on, on this thread, the allocation of that number (from 0) fails, and with ForEver every
// later one.
void startShortage(Shortage kind, int first);

// Back to plenty. False when no allocation had failed.
bool endShortage();

// How many allocations have failed so, on any thread.
int refusedAllocations();

// This program's malloc, as a replacement for the malloc of another module.
void* allocateInShortage(std::size_t size);

#endif
