#ifndef BRIDGECTL_WINDOWSERRORTEXT_H
#define BRIDGECTL_WINDOWSERRORTEXT_H

#include <cstdint>
#include <string>

// The system's words for a Windows error, in one line and in the user's language; empty for an
// error that it does not know.
std::string windowsErrorText(std::uint32_t error);

#endif
