#include <dirent.h>
#include <malloc.h>
#include <stdlib.h>
#include <time.h>

#include "support/process_figures.h"

/* Without three entries: the folder's own descriptor, "." and "..". */
long openHandles(void) {
    DIR* const folder = opendir("/proc/self/fd");
    long found = -3;
    if (folder == NULL) abort();
    while (readdir(folder) != NULL) ++found;
    closedir(folder);
    return found;
}

long long heapBytes(void) {
    const struct mallinfo2 info = mallinfo2();
    return (long long)(info.uordblks + info.hblkhd);
}

void waitBriefly(void) {
    const struct timespec wait = {0, 5000000};
    nanosleep(&wait, NULL);
}
