'use strict';
// The library, its data folder and the stand-ins, for the scripts of this folder.

const assert = require('assert');
const { spawn, spawnSync } = require('child_process');
const { once } = require('events');
const fs = require('fs');
const koffi = require('koffi');
const path = require('path');
const { setTimeout: sleep } = require('timers/promises');
const { load } = require('qx-bridge');
const { setProduct } = require('./registry');
const { data } = require('./sandbox');

const build = process.env.QX_TEST_BUILD;
const dll = path.join(build, 'bin', 'QX-Bridge.dll');
const standins = path.join(build, 'standins');
const output = path.join(data, 'standin.txt');

// No other test is this client: local sockets are shared by all processes.
const CLIENT = 'Launcher';
process.env.QX_STANDIN_CLIENTS = CLIENT;
process.env.QX_STANDIN_OUTPUT = output;
process.env.QX_STANDIN_SECONDS = '5';

// For listen() on a busy machine.
const PATIENT = { timeout: 60000 };

function write(name, content) {
    const file = path.join(data, name);
    fs.mkdirSync(path.dirname(file), { recursive: true });
    fs.writeFileSync(file, content);
    return file;
}

// Starts the library with this configuration.
function start(conf = '', options = {}) {
    write('vantrel.conf', conf);
    const bridge = load(dll);
    bridge.init(CLIENT, options);
    return bridge;
}

const read = (name) => fs.readFileSync(path.join(data, name), 'utf8');

// The messages of the product's log.
const log = () => read('Logs/Player.log').split(/\r?\n/);

const waitForPipe = koffi.load('kernel32.dll').func('int32_t WaitNamedPipeW(str16 path, uint32_t milliseconds)');

// Waits for the server's pipe: its thread begins after listen().
async function served() {
    for (let i = 0; i < 6000 && !waitForPipe(`\\\\.\\pipe\\vtr_${CLIENT}_bridge_nvo`, 1); ++i) await sleep(5);
}

// Sends one event as the product does, to a host that listens. The event loop runs meanwhile.
async function send(...words) {
    await served();
    const player = spawn(path.join(standins, 'QX-Player.exe'), ['--event', ...words], { stdio: 'ignore' });
    const [status] = await once(player, 'exit');
    assert.strictEqual(status, 0, `nobody took ${words.join(' ')}`);
}

// Whether HKEY_CURRENT_USER has a key.
const registry = koffi.load('advapi32.dll');
const openKey = registry.func('int32_t RegOpenKeyW(intptr_t root, str16 path, _Out_ intptr_t *key)');
const closeKey = registry.func('int32_t RegCloseKey(intptr_t key)');
function hasUserKey(name) {
    const key = [0];
    if (openKey(-0x7fffffff, name, key) !== 0) return false;
    closeKey(key[0]);
    return true;
}

// Runs another script of this folder to its end, in its own sandbox.
function runScript(name, ...words) {
    const file = path.join(data, `${name}.output`);
    const out = fs.openSync(file, 'w');
    const result = spawnSync(process.execPath, [path.join(__dirname, name), ...words],
        { stdio: ['ignore', out, out], timeout: 60000 });
    fs.closeSync(out);
    return { status: result.status, output: fs.readFileSync(file, 'utf8') };
}

// Runs one of scripts.js and checks its output.
function plays(expected, ...words) {
    assert.deepStrictEqual(runScript('scripts.js', ...words), { status: 0, output: expected });
}

module.exports = {
    CLIENT, PATIENT, data, dll, hasUserKey, log, output, plays, read, runScript, send, served, setProduct, standins,
    start, write,
};
