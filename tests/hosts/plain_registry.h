#ifndef TESTS_PLAIN_REGISTRY_H
#define TESTS_PLAIN_REGISTRY_H

#include <windows.h>

/* A product key that only this process sees. */

/* An empty one. */
void sandboxRegistry(void);

/* A REG_SZ value of it. */
void setProductText(const WCHAR* name, const WCHAR* text);

#endif
