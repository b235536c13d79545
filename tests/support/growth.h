#ifndef TESTS_GROWTH_H
#define TESTS_GROWTH_H

#ifdef __cplusplus
extern "C" {
#endif

/*
 * What a step leaves behind when it is repeated. Heaps keep freed blocks in buckets, and the system
 * takes handles once and for good: such figures rise in a few steps and then hold. A leak rises
 * with every round. So the rounds are played in batches, and only those that add least count:
 * beside other work on the machine one batch in three adds a bucket or two.
 */
enum { GROWTH_BATCHES = 10, GROWTH_BATCHES_THAT_COUNT = 4 };

typedef struct {
    long handles[GROWTH_BATCHES + 1];
    long long bytes[GROWTH_BATCHES + 1];
    int noted;
} Growth;

/* Notes the figures: before the first batch, and after each. Waits for what has just ended. */
void growthNote(Growth* growth);

/* What a batch adds: the mean of those that count. Ends the process where a batch is missing. */
long growthOfHandles(const Growth* growth);
long long growthOfBytes(const Growth* growth);

#ifdef __cplusplus
}
#endif

#endif
