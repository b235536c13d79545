#ifndef KIT_OUTCOME_H
#define KIT_OUTCOME_H

// What became of a check, or of one test of it.
enum class Outcome {
    Passed,
    Failed,
    Skipped,
    NeedsWindows,  // under Wine, for what Wine cannot decide
};

constexpr const char* nameOf(Outcome outcome) {
    switch (outcome) {
        case Outcome::Passed:
            return "passed";
        case Outcome::Failed:
            return "failed";
        case Outcome::Skipped:
            return "skipped";
        case Outcome::NeedsWindows:
            return "needs Windows";
    }
    return "";
}

#endif
