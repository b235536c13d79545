'use strict';
// Gives this process a registry of its own for the product's key.

const koffi = require('koffi');

const api = koffi.load('advapi32.dll');
const createKey = api.func('int32_t RegCreateKeyExW(intptr_t root, str16 path, uint32_t reserved, void *class, uint32_t options, uint32_t access, void *security, _Out_ intptr_t *key, void *disposition)');
const setValue = api.func('int32_t RegSetValueExW(intptr_t key, str16 name, uint32_t reserved, uint32_t type, str16 text, uint32_t size)');
const deleteValue = api.func('int32_t RegDeleteValueW(intptr_t key, str16 name)');
const overrideKey = api.func('int32_t RegOverridePredefKey(intptr_t root, intptr_t key)');
const deleteTree = api.func('int32_t RegDeleteTreeW(intptr_t root, str16 path)');

const HKEY_CURRENT_USER = -0x7fffffff; // sign-extended, as the handles of the system are
const HKEY_LOCAL_MACHINE = -0x7ffffffe;
const REG_OPTION_VOLATILE = 1;
const KEY_ALL_ACCESS = 0xf003f;
const KEY_WOW64_64KEY = 0x100;
const REG_SZ = 1;
const REG_EXPAND_SZ = 2;

function check(status, what) {
    if (status !== 0) throw new Error(`${what}: ${status}`);
}

function open(root, name) {
    const key = [0];
    check(createKey(root, name, 0, null, REG_OPTION_VOLATILE, KEY_ALL_ACCESS | KEY_WOW64_64KEY, null, key, null), name);
    return key[0];
}

const own = `Software\\QXBridgeTests\\node-${process.pid}`;
deleteTree(HKEY_CURRENT_USER, own);
check(overrideKey(HKEY_LOCAL_MACHINE, open(HKEY_CURRENT_USER, own)), 'RegOverridePredefKey');
process.on('exit', () => deleteTree(HKEY_CURRENT_USER, own));

const product = open(HKEY_LOCAL_MACHINE, 'SOFTWARE\\Vantrel_nvo');

function setProduct(name, text, type = REG_SZ) {
    check(setValue(product, name, 0, type, text, (text.length + 1) * 2), name);
}

function removeProduct(name) {
    check(deleteValue(product, name), name);
}

module.exports = { removeProduct, setProduct, REG_EXPAND_SZ };
