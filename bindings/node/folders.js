'use strict';
// Gives this process its own HKEY_LOCAL_MACHINE, which has the product's key and nothing else.

const koffi = require('koffi');
const { VERSION } = require('./bridge.generated');
const { text } = require('./arguments');
const { KEY } = require('./product');

const advapi = koffi.load('advapi32.dll');

// Handles of the registry are 32-bit numbers, sign-extended.
const HKEY_CURRENT_USER = -0x7fffffff;
const HKEY_LOCAL_MACHINE = -0x7ffffffe;
const REG_OPTION_VOLATILE = 1;
const KEY_ALL_ACCESS = 0xf003f;
const KEY_WOW64_64KEY = 0x100;
const REG_SZ = 1;
const ERROR_SUCCESS = 0;
const OWN = `Software\\QX-Bridge\\Development-${process.pid}`;

const createKey = advapi.func('int32_t RegCreateKeyExW(intptr_t root, str16 path, uint32_t reserved, void *class, uint32_t options, uint32_t access, void *security, _Out_ intptr_t *key, void *disposition)');
const setValue = advapi.func('int32_t RegSetValueExW(intptr_t key, str16 name, uint32_t reserved, uint32_t type, str16 text, uint32_t size)');
const closeKey = advapi.func('int32_t RegCloseKey(intptr_t key)');
const overrideKey = advapi.func('int32_t RegOverridePredefKey(intptr_t root, intptr_t key)');
const deleteTree = advapi.func('int32_t RegDeleteTreeW(intptr_t root, str16 path)');

function check(status, operation, name) {
    if (status !== ERROR_SUCCESS) throw new Error(`${operation} failed for ${name} (Windows error ${status})`);
}

function withKey(root, name, use) {
    const key = [0];
    check(createKey(root, name, 0, null, REG_OPTION_VOLATILE, KEY_ALL_ACCESS | KEY_WOW64_64KEY, null, key, null),
        'RegCreateKeyExW', name);
    try {
        use(key[0]);
    } finally {
        closeKey(key[0]);
    }
}

// The library appends program names directly to the folder.
const withSeparator = (folder) => (folder.endsWith('\\') ? folder : `${folder}\\`);

let own = false;

// Windows keeps its own handle to the key.
function takeOwnMachine() {
    if (own) return;
    deleteTree(HKEY_CURRENT_USER, OWN); // left by an ended process with the same id
    withKey(HKEY_CURRENT_USER, OWN, (key) => {
        check(overrideKey(HKEY_LOCAL_MACHINE, key), 'RegOverridePredefKey', OWN);
    });
    own = true;
    process.on('exit', () => deleteTree(HKEY_CURRENT_USER, OWN));
}

function useFolders({ dataFolder, installFolder }) {
    const values = {
        UserDefinedDir: text(dataFolder, 'dataFolder'),
        InstallDir: withSeparator(text(installFolder, 'installFolder')),
        Version: VERSION,
    };
    takeOwnMachine();
    withKey(HKEY_LOCAL_MACHINE, KEY, (key) => {
        for (const [name, value] of Object.entries(values)) {
            check(setValue(key, name, 0, REG_SZ, value, (value.length + 1) * 2), 'RegSetValueExW', name);
        }
    });
}

module.exports = { useFolders };
