#include "support/SignsOfLife.h"

#include "support/Platform.h"

// With slashes, because a child's start-up does not undo doubled backslashes.
std::string SignsOfLife::next() {
    std::string path = folder_ / std::to_string(++children_);
    for (char& c : path) c = c == '\\' ? '/' : c;
    return path;
}

bool SignsOfLife::allArrived() const {
    for (int i = 0; i < 6000 && folder_.list().size() < children_; ++i) sleepMs(10);
    return folder_.list().size() == children_;
}

void leaveSignOfLife(const std::string& sign) { writeBytes(sign, ""); }
