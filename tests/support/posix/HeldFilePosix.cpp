#include "support/HeldFile.h"

HeldFile::HeldFile(const std::string& /*path*/, Shares /*shares*/) {}

void HeldFile::release() {}

bool HeldFile::isPossible() { return false; }
