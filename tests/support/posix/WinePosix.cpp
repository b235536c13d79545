#include "support/Wine.h"

bool runsUnderWine() { return false; }
