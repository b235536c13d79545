#ifndef TESTS_PROOF_POWERFAILURE_H
#define TESTS_PROOF_POWERFAILURE_H

#include <map>
#include <set>
#include <string>
#include <vector>

#include "SystemCalls.h"

// A disk whose power fails: what was flushed is there, what was written since may not be. Writes go
// to a file's end, and files appear, move and vanish in the order in which this was done.

// Contents by path.
using DiskContents = std::map<std::string, std::string>;

// What can become of the bytes that were not flushed.
constexpr const char* kLossKept = "kept";
constexpr const char* kLossGone = "gone";  // what was there before the file was emptied is back
constexpr const char* kLossHalf = "half of it";
constexpr const char* kLossZeros = "zeros";
constexpr const char* kLossGarbage = "garbage";
constexpr const char* kLossEarlier = "an earlier piece";  // gone or garbage, and later ones there

// The losses that can leave `path` neither as it was nor with the content `after`, whenever the
// power fails.
std::set<std::string> harmfulLosses(const std::vector<FileOperation>& operations,
                                    const DiskContents& before, const std::string& path,
                                    const std::string& after);

// The file when the power does not fail. The operations must leave one.
std::string contentBehind(const std::vector<FileOperation>& operations, const DiskContents& before,
                          const std::string& path);

std::vector<FileOperation> withoutFlushes(std::vector<FileOperation> operations);

#endif
