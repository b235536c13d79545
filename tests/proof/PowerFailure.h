#ifndef TESTS_PROOF_POWERFAILURE_H
#define TESTS_PROOF_POWERFAILURE_H

#include <map>
#include <string>
#include <vector>

#include "SystemCalls.h"

// A disk whose power fails: flushed bytes are safe, later bytes may be lost. Writes append,
// and files are created, moved and deleted in the order of the operations.

// Contents by path.
using DiskContents = std::map<std::string, std::string>;

// The fates of bytes that were not flushed.
constexpr const char* kLossKept = "kept";
constexpr const char* kLossGone = "gone";  // the file has its content from before it was emptied
constexpr const char* kLossHalf = "half of it";
constexpr const char* kLossZeros = "zeros";
constexpr const char* kLossGarbage = "garbage";
constexpr const char* kLossEarlier = "an earlier piece";  // but not the later ones

// Expects the operations to give `path` the content `after`, and a power failure at any time to
// leave the old content or that one. Also expects that this is false without the flushes: the
// operations write one piece.
void expectOldOrNew(const std::vector<FileOperation>& operations, const DiskContents& before,
                    const std::string& path, const std::string& after);

#endif
