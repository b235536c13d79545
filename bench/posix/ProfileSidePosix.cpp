#include "ProfileSide.h"

std::optional<Side> profileSide(const std::string&, const std::string&) { return std::nullopt; }
