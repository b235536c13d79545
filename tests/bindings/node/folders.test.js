'use strict';
// The folders that a host sets for development.

const assert = require('assert');
const fs = require('fs');
const path = require('path');
const { test } = require('node:test');
const host = require('./host');
const { load, preflight, useFolders, BridgeUsageError } = require('qx-bridge');
const { VERSION } = require('qx-bridge/bridge.generated');
const { registryText } = require('qx-bridge/windows');

const KEY = 'SOFTWARE\\Vantrel_nvo';
const values = () => ['UserDefinedDir', 'InstallDir', 'Version'].map((name) => registryText(KEY, name));

test('the product\'s key has the folders and the library\'s version', () => {
    useFolders({ dataFolder: 'C:\\Größe 日本', installFolder: 'C:\\Programs\\' });
    assert.deepStrictEqual(values(), ['C:\\Größe 日本', 'C:\\Programs\\', VERSION]);
});

test('a later call replaces the folders; an install folder gets its separator', () => {
    useFolders({ dataFolder: 'C:\\Data', installFolder: 'C:\\Other' });
    assert.deepStrictEqual(values(), ['C:\\Data', 'C:\\Other\\', VERSION]);
    useFolders({ dataFolder: 'C:\\Data', installFolder: '' });
    assert.deepStrictEqual(values(), ['C:\\Data', '\\', VERSION]);
});

test('everything else of the machine is hidden', () => {
    assert.strictEqual(registryText('SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion', 'CurrentBuild'), null);
});

test('values of another type change nothing', () => {
    const before = values();
    assert.throws(() => useFolders({ dataFolder: 'C:\\New' }), { name: 'TypeError', message: 'installFolder must be a string' });
    assert.throws(() => useFolders({ dataFolder: 'C:\\a\0b', installFolder: '' }), { name: 'TypeError', message: 'dataFolder must not contain NUL' });
    assert.deepStrictEqual(values(), before);
});

test('the key goes with its process, and what an ended process has left is not seen', () => {
    const { status, output } = host.runScript('folders.js');
    assert.strictEqual(status, 0, output);
    const pid = Number(/^pid (\d+)$/m.exec(output)[1]);
    const own = (id) => `Software\\QX-Bridge\\Development-${id}`;
    assert.strictEqual(host.hasUserKey(own(process.pid)), true);
    assert.strictEqual(host.hasUserKey(own(pid)), false);
    assert.match(output, /^left over: null$/m);
});

test('an error names the call, the key and the error of Windows', () => {
    const { status, output } = host.runScript('folders.js', 'refused');
    assert.strictEqual(status, 0, output);
    assert.match(output, /^RegCreateKeyExW failed for Software\\QX-Bridge\\Development-\d+ \(Windows error 1018\)$/m);
});

test('the library starts there, and the folders stay as they are afterwards', async () => {
    useFolders({ dataFolder: host.data, installFolder: host.standins });
    host.write('vantrel.conf', 'vtr.instance.Nougat64.display_name="Jeux"\n');
    assert.deepStrictEqual(preflight('Launcher'), []);
    const bridge = load(path.join(process.env.QX_TEST_BUILD, 'bin', 'QX-Bridge.dll'));
    bridge.init('Helper');
    assert.deepStrictEqual(bridge.instances().map((one) => one.displayName), ['Jeux']);
    const late = () => useFolders({ dataFolder: 'C:\\Late', installFolder: 'C:\\Late' });
    assert.throws(late, (error) => error instanceof BridgeUsageError && error.message === 'useFolders() must be called before init()');
    await bridge.fini();
    assert.throws(late, BridgeUsageError);
    assert.strictEqual(registryText(KEY, 'UserDefinedDir'), host.data);
    assert.ok(fs.existsSync(path.join(host.data, 'Logs', 'Player.log')));
});
