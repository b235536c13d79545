#include "support/SignsOfLife.h"

#include "support/Platform.h"

// With forward slashes: a child's own start-up keeps doubled backslashes as they are.
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
