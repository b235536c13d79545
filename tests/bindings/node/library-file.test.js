'use strict';
// Which QX-Bridge.dll is loaded, also in Electron's archives.

const assert = require('assert');
const fs = require('fs');
const path = require('path');
const { test } = require('node:test');
const host = require('./host');
const { load } = require('qx-bridge');
const { libraryFile, outsideArchive } = require('qx-bridge/library-file');

const at = (...names) => path.join(host.data, 'app', ...names);
const DLL = path.join('node_modules', 'qx-bridge', 'bin', 'QX-Bridge.dll');

function make(file) {
    fs.mkdirSync(path.dirname(file), { recursive: true });
    fs.writeFileSync(file, '');
    return file;
}

test('a package without the library leaves the search to Windows', () => {
    assert.strictEqual(libraryFile(at('empty')), 'QX-Bridge.dll');
});

test('a package takes the library in its folder bin', () => {
    const file = make(at('installed', 'bin', 'QX-Bridge.dll'));
    assert.strictEqual(libraryFile(at('installed')), file);
});

test('a file that is unpacked beside the archive is loaded from there', () => {
    const file = make(at('app.asar.unpacked', DLL));
    assert.strictEqual(outsideArchive(at('app.asar', DLL)), file);
    assert.strictEqual(libraryFile(at('app.asar', 'node_modules', 'qx-bridge')), file);
    assert.strictEqual(outsideArchive(at('app.asar', DLL).replace(/\\/g, '/')), file.replace(/\\/g, '/'));
    assert.strictEqual(outsideArchive(file), file);
});

test('a folder with the name of an archive is none', () => {
    const file = make(at('other', 'app.asar', DLL));
    assert.strictEqual(outsideArchive(file), file);
    assert.strictEqual(outsideArchive(at('my-app.asar', DLL)), at('my-app.asar', DLL));
});

test('the library is loaded with Qt from beside the archive', () => {
    const folder = at('packed', 'app.asar.unpacked', 'bin');
    fs.mkdirSync(folder, { recursive: true });
    for (const name of ['QX-Bridge.dll', 'Qt5Core.dll', 'Qt5Network.dll']) {
        fs.copyFileSync(path.join(process.env.QX_TEST_BUILD, 'bin', name), path.join(folder, name));
    }
    const inside = at('packed', 'app.asar', 'bin', 'QX-Bridge.dll');
    const bridge = load(inside);
    bridge.init('Helper', { noConfFile: true });
    assert.deepStrictEqual(bridge.instances(), []);
    assert.strictEqual(load(inside), bridge);
    assert.throws(() => load(path.join(folder, 'QX-Bridge.dll')), { message: `${inside} is already loaded` });
    return bridge.fini();
});
