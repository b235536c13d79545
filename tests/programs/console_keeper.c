/* Keeps a console from ending with the programs in it: it waits until somebody ends it. */
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

int main(void) {
    Sleep(INFINITE);
    return 0;
}
