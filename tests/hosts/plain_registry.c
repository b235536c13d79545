#include "plain_registry.h"

static HKEY openKey(HKEY root, const WCHAR* path, DWORD options) {
    HKEY key = NULL;
    RegCreateKeyExW(root, path, 0, NULL, options, KEY_ALL_ACCESS | KEY_WOW64_64KEY, NULL, &key,
                    NULL);
    return key;
}

void sandboxRegistry(void) {
    WCHAR path[64];
    HKEY key;
    wsprintfW(path, L"Software\\QXBridgeTests\\host-%lu", GetCurrentProcessId());
    /* Left by a host that ended fatally, whose process id is in use again. */
    RegDeleteTreeW(HKEY_CURRENT_USER, path);
    /* The parent is not volatile, because it holds lasting keys too. */
    RegCloseKey(openKey(HKEY_CURRENT_USER, L"Software\\QXBridgeTests", REG_OPTION_NON_VOLATILE));
    key = openKey(HKEY_CURRENT_USER, path, REG_OPTION_VOLATILE);
    RegOverridePredefKey(HKEY_LOCAL_MACHINE, key);
    RegCloseKey(key);
}

void setProductText(const WCHAR* name, const WCHAR* text) {
    const HKEY key = openKey(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Vantrel_nvo", REG_OPTION_VOLATILE);
    RegSetValueExW(key, name, 0, REG_SZ, (const BYTE*)text,
                   (DWORD)((lstrlenW(text) + 1) * sizeof(WCHAR)));
    RegCloseKey(key);
}
