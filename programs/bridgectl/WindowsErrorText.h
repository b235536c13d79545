#ifndef BRIDGECTL_WINDOWSERRORTEXT_H
#define BRIDGECTL_WINDOWSERRORTEXT_H

#include <cstdint>
#include <string>

// The text of a Windows error in the user's language, in one line. Empty for an unknown error.
std::string windowsErrorText(std::uint32_t error);

#endif
