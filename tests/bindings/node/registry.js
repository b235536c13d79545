'use strict';
// Sets and removes values of the product's key, in this process's own registry.

const koffi = require('koffi');
const { useFolders } = require('qx-bridge');

const api = koffi.load('advapi32.dll');
const setKeyValue = api.func('int32_t RegSetKeyValueW(intptr_t root, str16 path, str16 name, uint32_t type, str16 text, uint32_t size)');
const deleteKeyValue = api.func('int32_t RegDeleteKeyValueW(intptr_t root, str16 path, str16 name)');

const HKEY_LOCAL_MACHINE = -0x7ffffffe; // sign-extended, as the handles of the system are
const KEY = 'SOFTWARE\\Vantrel_nvo';
const REG_SZ = 1;
const REG_EXPAND_SZ = 2;

useFolders({ dataFolder: 'C:\\None', installFolder: 'C:\\None' });

function check(status, what) {
    if (status !== 0) throw new Error(`${what}: ${status}`);
}

function setProduct(name, text, type = REG_SZ) {
    check(setKeyValue(HKEY_LOCAL_MACHINE, KEY, name, type, text, (text.length + 1) * 2), name);
}

function removeProduct(name) {
    check(deleteKeyValue(HKEY_LOCAL_MACHINE, KEY, name), name);
}

module.exports = { removeProduct, setProduct, REG_EXPAND_SZ };
