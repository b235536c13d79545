'use strict';
// QX-Bridge.dll for Node.js and Electron. index.d.ts says what each member does.

const { RESULT, EVENTS, IMAGES } = require('./bridge.generated');
const { Bridge } = require('./bridge');
const errors = require('./errors');
const { Key, keys } = require('./keys');
const native = require('./native');
const { preflight } = require('./preflight');

const CLIENTS = Object.freeze(['Launcher', 'Installer', 'LogCollector', 'Helper', 'Uninstaller']);

let loaded = null;

function load(file = 'QX-Bridge.dll') {
    if (loaded === null) loaded = { file, bridge: new Bridge(native.load(file)) };
    if (loaded.file !== file) throw new Error(`${loaded.file} is loaded already`);
    return loaded.bridge;
}

module.exports = { load, preflight, keys, Key, CLIENTS, RESULT, EVENTS, IMAGES, ...errors };
