'use strict';
// The Windows functions that the checks need.

const koffi = require('koffi');

const advapi = koffi.load('advapi32.dll');
const kernel = koffi.load('kernel32.dll');

// Handles of the registry are 32-bit numbers, sign-extended.
const HKEY_LOCAL_MACHINE = -0x7ffffffe;
const RRF_RT_REG_SZ = 0x2;
const RRF_NOEXPAND = 0x10000000; // else a REG_EXPAND_SZ, which the library does not accept, counts as a text
const RRF_SUBKEY_WOW6464KEY = 0x10000;
const ERROR_SUCCESS = 0;
const ERROR_GEN_FAILURE = 31;

const INVALID_HANDLE_VALUE = -1;
const FILE_APPEND_DATA = 0x4;
const DELETE = 0x10000;
const GENERIC_READ = 0x80000000;
const GENERIC_WRITE = 0x40000000;
const FILE_SHARE_ALL = 0x7; // read, write, delete
const CREATE_NEW = 1;
const OPEN_EXISTING = 3;
const FILE_FLAG_DELETE_ON_CLOSE = 0x4000000;
const SECURITY_IDENTIFICATION = 0x110000; // SECURITY_SQOS_PRESENT is part of it

const regGetValue = advapi.func('int32_t RegGetValueW(intptr_t key, str16 subKey, str16 value, uint32_t flags, void *type, void *data, _Inout_ uint32_t *size)');
const createFile = kernel.func('intptr_t CreateFileW(str16 path, uint32_t access, uint32_t sharing, void *security, uint32_t disposition, uint32_t flags, intptr_t like)');
const getLastError = kernel.func('uint32_t GetLastError()');
const closeHandle = kernel.func('int32_t CloseHandle(intptr_t handle)');
const waitNamedPipe = kernel.func('int32_t WaitNamedPipeW(str16 path, uint32_t milliseconds)');
const getServerProcessId = kernel.func('int32_t GetNamedPipeServerProcessId(intptr_t pipe, _Out_ uint32_t *processId)');

// A text in the 64-bit view of HKEY_LOCAL_MACHINE; null when it is missing or not a text.
function registryText(key, name) {
    const flags = RRF_RT_REG_SZ | RRF_NOEXPAND | RRF_SUBKEY_WOW6464KEY;
    const size = [0];
    if (regGetValue(HKEY_LOCAL_MACHINE, key, name, flags, null, null, size) !== ERROR_SUCCESS) return null;
    const data = Buffer.alloc(size[0]);
    if (regGetValue(HKEY_LOCAL_MACHINE, key, name, flags, null, data, size) !== ERROR_SUCCESS) return null;
    return data.toString('utf16le', 0, size[0]).replace(/\0+$/, '');
}

// 0 when the file opens, else the Windows error. The file is closed at once.
function openError(path, access, disposition, flags) {
    const file = createFile(path, access, FILE_SHARE_ALL, null, disposition, flags, 0);
    const error = getLastError();
    if (file === INVALID_HANDLE_VALUE) return error || ERROR_GEN_FAILURE;
    closeHandle(file);
    return 0;
}

// Opens an existing file as the library opens its log.
const appendError = (path) => openError(path, FILE_APPEND_DATA, OPEN_EXISTING, 0);

// Creates a file that does not exist yet, and deletes it.
const createError = (path) => openError(path, FILE_APPEND_DATA | DELETE, CREATE_NEW, FILE_FLAG_DELETE_ON_CLOSE);

// The process that serves a pipe; null while there is none or all instances are busy. The server may identify
// this process but not impersonate it.
function pipeServer(path) {
    if (waitNamedPipe(path, 1) === 0) return null;
    const pipe = createFile(path, GENERIC_READ | GENERIC_WRITE, 0, null, OPEN_EXISTING, SECURITY_IDENTIFICATION, 0);
    if (pipe === INVALID_HANDLE_VALUE) return null;
    const processId = [0];
    const known = getServerProcessId(pipe, processId);
    closeHandle(pipe);
    return known === 0 ? null : processId[0];
}

module.exports = { registryText, appendError, createError, pipeServer };
