'use strict';
// The C interface of QX-Bridge.dll, declared to koffi.

const koffi = require('koffi');
const path = require('path');
const { CALLBACKS, FUNCTIONS } = require('./bridge.generated');
const { outsideArchive } = require('./library-file');

// Name and parameter names of a declaration.
function parts(declaration) {
    const [, name, list] = /(\w+)\((.*)\)$/.exec(declaration);
    return { name, parameters: list === '' ? [] : list.split(', ').map((one) => /\w+$/.exec(one)[0]) };
}

// koffi frees a DLL when Node exits, while the event thread may still run in it. A pinned DLL stays loaded.
function pin(library) {
    const kernel = koffi.load('kernel32.dll');
    const getModuleHandleEx = kernel.func('int32_t GetModuleHandleExW(uint32_t flags, str16 name, _Out_ void **module)');
    const GET_MODULE_HANDLE_EX_FLAG_PIN = 1;
    if (getModuleHandleEx(GET_MODULE_HANDLE_EX_FLAG_PIN, library, [null]) === 0) {
        throw new Error(`${library} cannot be kept loaded`);
    }
}

// Loads the library and returns its functions by name.
function load(file) {
    const full = outsideArchive(path.resolve(file));
    // Load Qt from beside the library, not from PATH.
    for (const qt of ['Qt5Core.dll', 'Qt5Network.dll']) koffi.load(path.join(path.dirname(full), qt));
    const library = koffi.load(full);
    pin(full);

    for (const declaration of CALLBACKS) koffi.proto(declaration);
    const functions = {};
    const declare = (declaration) => {
        functions[parts(declaration).name] = library.func(declaration);
    };
    const isFree = (declaration) => declaration.includes('bridgeFreeMemory');
    FUNCTIONS.filter(isFree).forEach(declare);
    koffi.disposable('BridgeText', 'str', functions.bridgeFreeMemory);
    FUNCTIONS.filter((declaration) => !isFree(declaration)).forEach(declare);
    return functions;
}

// A UTF-8 text that is never freed: the library keeps the pointer to the client id.
const keptTexts = new Map();
function keptText(text) {
    if (!keptTexts.has(text)) {
        const size = Buffer.byteLength(text, 'utf8') + 1;
        const memory = koffi.alloc('char', size);
        koffi.encode(memory, koffi.array('char', size, 'String'), text);
        keptTexts.set(text, memory);
    }
    return keptTexts.get(text);
}

// Function pointers for bridgeRegisterCallbacks, which are never freed. receive(callback, values) runs on the
// event loop while the library's event thread waits.
function callbackPointers(receive) {
    return CALLBACKS.map((declaration) => {
        const { name, parameters } = parts(declaration);
        return koffi.register((...values) => {
            receive(name, Object.fromEntries(parameters.map((parameter, i) => [parameter, values[i]])));
        }, `${name} *`);
    });
}

module.exports = { load, keptText, callbackPointers };
