#ifndef KIT_OUTCOME_H
#define KIT_OUTCOME_H

// The result of a check, or of one of its tests.
enum class Outcome {
    Passed,
    Failed,
    Skipped,
    NeedsWindows,  // the kit runs under Wine
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
