/* Keeps a console open while programs in it end. The test terminates it. */
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

int main(void) {
    Sleep(INFINITE);
    return 0;
}
