#include "growth.h"

#include <stdlib.h>

#include "process_figures.h"

/* The clean-up of ended threads and connections takes a moment. */
static void settle(long handles, long long bytes) {
    enum { LONGEST = 200, UNCHANGED = 5 };
    long long now = heapBytes();
    int unchanged = 0;
    int i;
    for (i = 0; i < LONGEST && openHandles() > handles; ++i) waitBriefly();
    for (i = 0; i < LONGEST && now > bytes && unchanged < UNCHANGED; ++i) {
        const long long before = now;
        waitBriefly();
        now = heapBytes();
        unchanged = now == before ? unchanged + 1 : 0;
    }
}

void growthNote(Growth* growth) {
    const int at = growth->noted;
    if (at > GROWTH_BATCHES) abort();
    if (at > 0) settle(growth->handles[at - 1], growth->bytes[at - 1]);
    growth->handles[at] = openHandles();
    growth->bytes[at] = heapBytes();
    ++growth->noted;
}

static int byValue(const void* a, const void* b) {
    const long long x = *(const long long*)a;
    const long long y = *(const long long*)b;
    return (x > y) - (x < y);
}

static long long meanOfThoseThatCount(long long* added) {
    long long sum = 0;
    int i;
    qsort(added, GROWTH_BATCHES, sizeof *added, byValue);
    for (i = 0; i < GROWTH_BATCHES_THAT_COUNT; ++i) sum += added[i];
    return sum / GROWTH_BATCHES_THAT_COUNT;
}

long growthOfHandles(const Growth* growth) {
    long long added[GROWTH_BATCHES];
    int i;
    if (growth->noted <= GROWTH_BATCHES) abort();
    for (i = 0; i < GROWTH_BATCHES; ++i) added[i] = growth->handles[i + 1] - growth->handles[i];
    return (long)meanOfThoseThatCount(added);
}

long long growthOfBytes(const Growth* growth) {
    long long added[GROWTH_BATCHES];
    int i;
    if (growth->noted <= GROWTH_BATCHES) abort();
    for (i = 0; i < GROWTH_BATCHES; ++i) added[i] = growth->bytes[i + 1] - growth->bytes[i];
    return meanOfThoseThatCount(added);
}
