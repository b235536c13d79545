'use strict';
// The preflight finds the problems of a start without calling the library, and creates nothing.

const assert = require('assert');
const fs = require('fs');
const koffi = require('koffi');
const path = require('path');
const { beforeEach, test } = require('node:test');
const host = require('./host');
const { removeProduct, setProduct, REG_EXPAND_SZ } = require('./registry');
const { load, preflight, PreflightError } = require('qx-bridge');
const { VERSION } = require('qx-bridge/bridge.generated');

const VALUE = 'the registry value HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantrel_nvo "UserDefinedDir"';
const logs = path.join(host.data, 'Logs');
const log = path.join(logs, 'Player.log');
const conf = path.join(host.data, 'vantrel.conf');

const whats = (...values) => preflight(...values).map(({ what }) => what);

beforeEach(() => {
    setProduct('UserDefinedDir', host.data);
    setProduct('Version', VERSION);
    fs.mkdirSync(logs, { recursive: true });
    fs.rmSync(log, { recursive: true, force: true });
    host.write('vantrel.conf', '');
});

test('nothing in the way, and nothing left behind', () => {
    assert.deepStrictEqual(preflight('Launcher'), []);
    assert.deepStrictEqual(fs.readdirSync(logs), []);
});

test('a registry without the data folder', () => {
    removeProduct('UserDefinedDir');
    assert.deepStrictEqual(preflight('Helper'), [{
        what: `${VALUE} is missing`,
        remedy: 'install the product, or set it to a data folder (reg add HKLM\\SOFTWARE\\Vantrel_nvo /v UserDefinedDir /d C:\\Data)',
    }]);
    setProduct('UserDefinedDir', '');
    assert.deepStrictEqual(whats('Helper'), [`${VALUE} is missing`]);
    setProduct('UserDefinedDir', host.data, REG_EXPAND_SZ);
    assert.deepStrictEqual(whats('Helper'), [`${VALUE} is missing`], 'the library takes no text with variables');
});

test('a data folder that does not exist', () => {
    setProduct('UserDefinedDir', path.join(host.data, 'none'));
    assert.deepStrictEqual(whats('Helper'), [`the data folder ${path.join(host.data, 'none')} does not exist`]);
    setProduct('UserDefinedDir', conf);
    assert.deepStrictEqual(whats('Helper'), [`the data folder ${conf} does not exist`], 'a file is none');
});

test('a data folder without Logs', () => {
    fs.rmdirSync(logs);
    assert.deepStrictEqual(preflight('Helper'), [{ what: `the folder ${logs} does not exist`, remedy: 'create it: the log is written there' }]);
    assert.deepStrictEqual(preflight('Helper', { logFile: path.join(host.data, 'own.log') }), []);
});

test('a log that cannot be opened', () => {
    fs.mkdirSync(log);
    assert.deepStrictEqual(whats('Helper'), [`the log ${log} cannot be opened (Windows error 5)`]);
    fs.rmdirSync(log);
    fs.writeFileSync(log, 'line\n');
    assert.deepStrictEqual(whats('Helper'), []);
    assert.strictEqual(fs.readFileSync(log, 'utf8'), 'line\n');
});

test('a log that another program has for itself', () => {
    const kernel = koffi.load('kernel32.dll');
    const createFile = kernel.func('intptr_t CreateFileW(str16 path, uint32_t access, uint32_t sharing, void *security, uint32_t disposition, uint32_t flags, intptr_t like)');
    const closeHandle = kernel.func('int32_t CloseHandle(intptr_t handle)');
    const held = createFile(log, 0x40000000, 0, null, 2, 0, 0);
    assert.deepStrictEqual(whats('Helper'), [`the log ${log} cannot be opened (Windows error 32)`]);
    closeHandle(held);
    assert.deepStrictEqual(whats('Helper'), []);
});

test('a log of the host\'s own', () => {
    const own = (file) => whats('Helper', { logFile: file });
    assert.deepStrictEqual(own(path.join(host.data, 'new', 'folder', 'own.log')), [], 'the library makes the folder');
    assert.ok(!fs.existsSync(path.join(host.data, 'new')));
    const slashes = `${host.data.replace(/\\/g, '/')}/new/own.log`;
    assert.deepStrictEqual(own(slashes), [`the log ${slashes} cannot be opened (Windows error 3)`], 'it does not for "/"');
    assert.deepStrictEqual(own(''), [], 'standard output');
});

test('a configuration file that does not exist', () => {
    fs.rmSync(conf);
    assert.deepStrictEqual(preflight('Helper'),
        [{ what: `the configuration file ${conf} does not exist`, remedy: 'install the product, or copy a vantrel.conf there' }]);
    assert.deepStrictEqual(preflight('Helper', { noConfFile: true }), []);
});

test('a configuration file with a byte order mark', () => {
    host.write('vantrel.conf', '\ufeffvtr.locale="x"\n');
    assert.deepStrictEqual(preflight('Helper'),
        [{ what: `the configuration file ${conf} begins with a byte order mark`, remedy: 'save it as UTF-8 without a byte order mark' }]);
    assert.deepStrictEqual(preflight('Helper', { noConfFile: true }), []);
});

test('another version of the product, which only the launcher minds', () => {
    setProduct('Version', '1.2');
    assert.deepStrictEqual(preflight('Launcher'),
        [{ what: `the product's version is "1.2", and the library's is "${VERSION}"`, remedy: 'install product and library of the same version' }]);
    assert.deepStrictEqual(preflight('Helper'), []);
    removeProduct('Version');
    assert.deepStrictEqual(whats('Launcher'), [`the product's version is "", and the library's is "${VERSION}"`]);
});

test('several problems in their order', () => {
    fs.rmdirSync(logs);
    fs.rmSync(conf);
    setProduct('Version', '1.2');
    assert.deepStrictEqual(whats('Launcher'), [
        `the folder ${logs} does not exist`, `the configuration file ${conf} does not exist`,
        `the product's version is "1.2", and the library's is "${VERSION}"`,
    ]);
});

test('without a file and with a log of its own a host needs no data folder', () => {
    removeProduct('UserDefinedDir');
    assert.deepStrictEqual(preflight('Helper', { noConfFile: true, logFile: path.join(host.data, 'own.log') }), []);
});

test('init() reports the same problems instead of ending the process', () => {
    const bridge = load(host.dll);
    fs.rmdirSync(logs);
    const [what, remedy] = [`the folder ${logs} does not exist`, 'create it: the log is written there'];
    assert.throws(() => bridge.init('Helper'),
        { constructor: PreflightError, problems: [{ what, remedy }], message: `${what}: ${remedy}` });
    assert.throws(() => bridge.instances(), /call init\(\) first/);
    fs.mkdirSync(logs);
    bridge.init('Helper');
    assert.deepStrictEqual(bridge.instances(), []);
});
