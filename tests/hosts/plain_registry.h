#ifndef TESTS_PLAIN_REGISTRY_H
#define TESTS_PLAIN_REGISTRY_H

#include <windows.h>

/* Gives this process an empty product key that no other process sees. */
void sandboxRegistry(void);

/* Sets a REG_SZ value of the product's key. */
void setProductText(const WCHAR* name, const WCHAR* text);

#endif
