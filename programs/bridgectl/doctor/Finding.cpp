#include "doctor/Finding.h"

const char* levelName(FindingLevel level) {
    switch (level) {
        case FindingLevel::Ok:
            return "ok";
        case FindingLevel::Note:
            return "note";
        case FindingLevel::Problem:
            break;
    }
    return "problem";
}
