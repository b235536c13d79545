#include <dirent.h>
#include <stdlib.h>

#include "open_handles.h"

/* Without the three entries that reading the folder brings: itself, "." and "..". */
long openHandles(void) {
    DIR* const folder = opendir("/proc/self/fd");
    long found = -3;
    if (folder == NULL) abort();
    while (readdir(folder) != NULL) ++found;
    closedir(folder);
    return found;
}
