'use strict';
// QX-Bridge.dll for Node.js and Electron. index.d.ts documents each member.

const { RESULT, EVENTS, IMAGES } = require('./bridge.generated');
const { Bridge } = require('./bridge');
const { Calls } = require('./calls');
const errors = require('./errors');
const folders = require('./folders');
const { Key, keys } = require('./keys');
const { libraryFile } = require('./library-file');
const native = require('./native');
const { preflight } = require('./preflight');

const CLIENTS = Object.freeze(['Launcher', 'Installer', 'LogCollector', 'Helper', 'Uninstaller']);

let loaded = null;

function load(file = libraryFile()) {
    if (loaded === null) {
        const calls = new Calls(native.load(file));
        loaded = { file, calls, bridge: new Bridge(calls) };
    }
    if (loaded.file !== file) throw new Error(`${loaded.file} is already loaded`);
    return loaded.bridge;
}

function useFolders(options) {
    if (loaded !== null && loaded.calls.started) throw new errors.BridgeUsageError('useFolders() must be called before init()');
    folders.useFolders(options);
}

module.exports = {
    load, preflight, useFolders, keys, Key, CLIENTS, RESULT, EVENTS, IMAGES, ...errors,
};
