#ifndef TESTS_WINE_H
#define TESTS_WINE_H

// Whether this is Wine, for the few checks that only Windows itself can decide.
bool runsUnderWine();

#endif
