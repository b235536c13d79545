#ifndef TESTS_GROWTH_H
#define TESTS_GROWTH_H

#ifdef __cplusplus
extern "C" {
#endif

/*
 * Detects leaks of a repeated step. Heaps keep freed blocks in buckets, and the system allocates
 * some handles once: this growth stops after a few rounds, but a leak grows with every round.
 * Therefore the rounds are played in batches, and only the batches with the smallest growth count:
 * on a busy machine one batch in three adds a bucket or two.
 */
enum { GROWTH_BATCHES = 10, GROWTH_BATCHES_THAT_COUNT = 4 };

typedef struct {
    long handles[GROWTH_BATCHES + 1];
    long long bytes[GROWTH_BATCHES + 1];
    int noted;
} Growth;

/* Notes the figures: before the first batch and after each. Waits for pending clean-up. */
void growthNote(Growth* growth);

/* The mean growth of the batches that count. Aborts if a batch is missing. */
long growthOfHandles(const Growth* growth);
long long growthOfBytes(const Growth* growth);

#ifdef __cplusplus
}
#endif

#endif
