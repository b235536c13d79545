#ifndef KIT_KITOPTIONS_H
#define KIT_KITOPTIONS_H

#include <optional>
#include <string>
#include <vector>

#include "Runner.h"

struct KitOptions {
    RunnerOptions runner;
    bool help = false;
};

// Reads "--only ID,ID", "--no-questions" and "--help". Returns nothing for other arguments.
std::optional<KitOptions> readKitOptions(const std::vector<std::string>& arguments);

#endif
