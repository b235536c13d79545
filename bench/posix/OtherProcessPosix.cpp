#include "OtherProcess.h"

std::function<void(bool)> otherProcess(int) { return nullptr; }
