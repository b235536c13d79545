'use strict';
// Sets folders when an ended process with the same id has left a key or, with "refused", when Windows creates
// no keys.

const koffi = require('koffi');
const { useFolders } = require('qx-bridge');
const { registryText } = require('qx-bridge/windows');

const api = koffi.load('advapi32.dll');
const createKey = api.func('int32_t RegCreateKeyW(intptr_t root, str16 path, _Out_ intptr_t *key)');
const setKeyValue = api.func('int32_t RegSetKeyValueW(intptr_t root, str16 path, str16 name, uint32_t type, str16 text, uint32_t size)');
const deleteKey = api.func('int32_t RegDeleteKeyW(intptr_t root, str16 path)');
const overrideKey = api.func('int32_t RegOverridePredefKey(intptr_t root, intptr_t key)');

const HKEY_CURRENT_USER = -0x7fffffff;
const folders = { dataFolder: 'C:\\Data', installFolder: 'C:\\Programs' };

// Replaces HKEY_CURRENT_USER with a deleted key, below which Windows creates none.
function refuseKeys() {
    const name = `Software\\QXBridgeTests-${process.pid}`;
    const key = [0];
    createKey(HKEY_CURRENT_USER, name, key);
    deleteKey(HKEY_CURRENT_USER, name);
    overrideKey(HKEY_CURRENT_USER, key[0]);
}

if (process.argv[2] === 'refused') {
    refuseKeys();
    try {
        useFolders(folders);
    } catch (error) {
        console.log(error.message);
    }
} else {
    setKeyValue(HKEY_CURRENT_USER, `Software\\QX-Bridge\\Development-${process.pid}\\SOFTWARE`, 'Old', 1, 'x', 4);
    useFolders(folders);
    console.log(`pid ${process.pid}`);
    console.log(`left over: ${registryText('SOFTWARE', 'Old')}`);
}
