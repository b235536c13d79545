'use strict';
// Errors that would end the process are exceptions, with the real library. The library starts once per
// process, so the tests depend on their order.

const assert = require('assert');
const fs = require('fs');
const path = require('path');
const { test } = require('node:test');
const host = require('./host');
const { keys, BridgeError, KeyError } = require('qx-bridge');

const CONF = [
    'vtr.locale="fr-FR"',
    'vtr.feature.macros="1"',
    'vtr.status.ssse3_available="maybe"',
    'vtr.instance.Nougat64.dpi="240"',
    'vtr.instance.Nougat64.ram="much"',
    'vtr.instance.Nougat64.max_fps="30fps"',
    'vtr.instance.Nougat64.display_name=""',
    'vtr.instance.Nougat64.enable_vsync=""',
];
const withMore = (...more) => [...CONF, ...more].map((line) => `${line}\n`).join('');
const store = (...more) => host.write('vantrel.conf', withMore(...more));

const bridge = host.start(withMore());
const { conf } = bridge;

const says = (message) => ({ constructor: KeyError, message });

test('a key that does not exist', () => {
    assert.throws(() => conf.getString('vtr.locael'), says('there is no key "vtr.locael"; did you mean "vtr.locale"?'));
    assert.throws(() => conf.setString('vtr.locael', 'x'), says('there is no key "vtr.locael"; did you mean "vtr.locale"?'));
    assert.throws(() => conf.get('vtr.locael'), KeyError);
    assert.throws(() => conf.set('vtr.locael', 'x'), KeyError);
    assert.strictEqual(conf.getString('vtr.locale'), 'fr-FR', 'the host lives');
});

test('a key of another type', () => {
    assert.throws(() => conf.getBool('vtr.instance.Nougat64.dpi'), says('"vtr.instance.Nougat64.dpi" is an i32, not a bool'));
    assert.throws(() => conf.setMultiString('vtr.locale', 'x'), says('"vtr.locale" is a string, not a multi-string'));
    assert.throws(() => conf.getI64('vtr.locale'), says('"vtr.locale" is a string, not an i64'));
    assert.throws(() => conf.setI64('vtr.locale', 1n << 40n), says('"vtr.locale" is a string, not an i64'));
});

test('constants and texts give values of the key\'s type', () => {
    assert.strictEqual(conf.get(keys.global.locale), 'fr-FR');
    assert.strictEqual(conf.get(keys.instance('Nougat64').dpi), 240);
    assert.strictEqual(conf.get('vtr.enable_adb_access'), false);
    conf.set(keys.global.enableAdbAccess, true);
    assert.strictEqual(conf.get(keys.global.enableAdbAccess), true);
    conf.set('vtr.instance.Nougat64.dpi', 320);
    assert.strictEqual(conf.getI32('vtr.instance.Nougat64.dpi'), 320);
    conf.set(keys.global.sharedFolders, ['a', 'b']);
    assert.deepStrictEqual(conf.get(keys.global.sharedFolders), ['a', 'b']);
    assert.throws(() => conf.set(keys.global.enableAdbAccess, 'true'), TypeError);
    assert.throws(() => conf.get({ text: 'vtr.locale' }), TypeError, 'what is no constant of keys');
});

test('an instance that does not exist', () => {
    const nougat = 'there is no instance "nougat64"; did you mean "Nougat64"?';
    assert.throws(() => conf.getI32('vtr.instance.nougat64.dpi'), says(nougat));
    assert.throws(() => conf.setI32('vtr.instance.nougat64.dpi', 1), says(nougat));
    assert.throws(() => conf.get(keys.instance('Pie').dpi), says('there is no instance "Pie"'));
});

test('a bool without a value and a default', () => {
    assert.throws(() => conf.getBool('vtr.status.raw_mode'), says('"vtr.status.raw_mode" has no value and no default'));
    assert.strictEqual(conf.getBool('vtr.feature.macros'), true, 'the file has a value');
    conf.setBool('vtr.status.raw_mode', true);
    assert.strictEqual(conf.getBool('vtr.status.raw_mode'), true);
});

test('a stored value that cannot be read', () => {
    const unreadable = (key, value) => says(`"${key}" has a value that cannot be read: "${value}"`);
    assert.throws(() => conf.getBool('vtr.status.ssse3_available'), unreadable('vtr.status.ssse3_available', 'maybe'));
    assert.throws(() => conf.getI32('vtr.instance.Nougat64.ram'), unreadable('vtr.instance.Nougat64.ram', 'much'));
    assert.throws(() => bridge.instances(), unreadable('vtr.instance.Nougat64.ram', 'much'), 'the listing has it');
    assert.throws(() => conf.getBool('vtr.instance.Nougat64.enable_vsync'), unreadable('vtr.instance.Nougat64.enable_vsync', ''));
    assert.strictEqual(conf.getI32('vtr.instance.Nougat64.max_fps'), 30, 'the library reads the start of it');
    conf.setI32('vtr.instance.Nougat64.ram', 4096);
    assert.strictEqual(conf.getI32('vtr.instance.Nougat64.ram'), 4096);
    assert.deepStrictEqual(bridge.instances().map(({ instance, ram }) => [instance, ram]), [['Nougat64', 4096]]);
    host.write('vantrel.conf', 'vtr.instance.Nougat64.cpus="few"\n');
    assert.throws(() => bridge.instances(), unreadable('vtr.instance.Nougat64.cpus', 'few'), 'although it is not loaded yet');
    store();
    conf.commit();
});

test('an empty bool without a default has no value', () => {
    store('vtr.status.ssse3_available=""');
    conf.commitToFile(path.join(host.data, 'copy.conf'));
    assert.throws(() => conf.getBool('vtr.status.ssse3_available'), says('"vtr.status.ssse3_available" has no value and no default'));
    store();
});

test('the same numbers are readable as for the library', () => {
    const { KnownValues } = require('qx-bridge/known-values');
    const known = new KnownValues();
    const isNumber = (value) => {
        known.set('k', value);
        return known.isReadable('k', { type: 'i32', default: '' });
    };
    const key = 'vtr.instance.Nougat64.gl_win_x';
    for (const [value, number] of [['', 0], ['7', 7], ['-7', -7], ['+7', 7], [' \t7', 7], ['007', 7], ['7x', 7], ['0', 0],
        ['-0', 0], [' 0', 0], ['99999999999', 2147483647], ['-99999999999', -2147483648], ['1e3', 1]]) {
        assert.ok(isNumber(value), JSON.stringify(value));
        store(`${key}="${value}"`);
        conf.commitToFile(path.join(host.data, 'copy.conf')); // loads the file
        assert.strictEqual(conf.getI32(key), number, JSON.stringify(value));
    }
    for (const value of ['x', '0x', ' ', '-', '+', '+-7', '- 7', '0 ', 'x7', '\u00a07']) {
        assert.ok(!isNumber(value), JSON.stringify(value));
    }
    store();
});

test('an instance that another program has added is known, and loaded by the next commit', () => {
    store('vtr.instance.Nougat32.dpi="160"');
    assert.throws(() => conf.getI32('vtr.instance.Nougat32.dpi'),
        says('instance "Nougat32" is not loaded yet: commit, or wait for instanceListUpdated'));
    assert.throws(() => conf.getBool('vtr.instance.Nougat32.pin_to_top'), KeyError, 'which would end the process');
    conf.setString('vtr.locale', 'de-DE');
    conf.commit();
    assert.strictEqual(conf.getI32('vtr.instance.Nougat32.dpi'), 160);
    assert.strictEqual(conf.getBool('vtr.instance.Nougat32.pin_to_top'), false);
});

test('an unreadable number does not show whether an instance is loaded', () => {
    const instance = 'vtr.instance.Nougat32_5';
    store(`${instance}.display_name=""`, `${instance}.dpi="wide"`, `${instance}.max_fps="30"`);
    conf.commitToFile(path.join(host.data, 'copy.conf'));
    assert.strictEqual(conf.getI32(`${instance}.max_fps`), 30);
    store();
});

test('a commit loads the values of the file', () => {
    store('vtr.status.raw_mode="?"', 'vtr.instance.Nougat32.dpi="wide"');
    assert.strictEqual(conf.getBool('vtr.status.raw_mode'), true, 'not loaded yet');
    conf.commitToFile(path.join(host.data, 'copy.conf'));
    assert.throws(() => conf.getBool('vtr.status.raw_mode'), /has a value that cannot be read: "\?"/);
    assert.throws(() => conf.getI32('vtr.instance.Nougat32.dpi'), /has a value that cannot be read: "wide"/);
});

test('a set of this process outlives a load', () => {
    conf.setBool('vtr.status.raw_mode', false);
    conf.commit();
    assert.strictEqual(conf.getBool('vtr.status.raw_mode'), false);
});

test('a new instance', () => {
    conf.addInstance('Nougat64_7');
    assert.throws(() => conf.getI32('vtr.instance.Nougat64_7.dpi'), /is not loaded yet/);
    conf.setI32('vtr.instance.Nougat64_7.dpi', 320);
    assert.strictEqual(conf.getI32('vtr.instance.Nougat64_7.dpi'), 320);
    assert.strictEqual(conf.getBool('vtr.instance.Nougat64_7.pin_to_top'), false, 'with its defaults');
    conf.commit();
    assert.ok(host.read('vantrel.conf').includes('vtr.instance.Nougat64_7.dpi="320"\n'));
    conf.addInstance('Nougat64_7');
});

test('a name that no instance can have', () => {
    for (const [name, message] of [
        ['Pie64', '"Pie64" is not an image; there are Nougat32, Nougat64'],
        ['Pie64_2', '"Pie64" is not an image; there are Nougat32, Nougat64'],
        ['', '"" cannot be the name of an instance'],
        ['Nougat64_a.b', '"Nougat64_a.b" cannot be the name of an instance'],
        ['Nougat64_a=b', '"Nougat64_a=b" cannot be the name of an instance'],
        ['Nougat64_a\nb', '"Nougat64_a\nb" cannot be the name of an instance'],
    ]) {
        assert.throws(() => conf.addInstance(name), says(message));
    }
    assert.throws(() => conf.addInstance('Nougat64_\0'), TypeError);
    assert.throws(() => conf.getI32('vtr.instance.Pie64.dpi'), says('there is no instance "Pie64"'));
});

test('a listing with an instance of an unknown image', async () => {
    const ram = 'vtr.instance.Nougat64.ram="4096"';
    store(ram);
    conf.commitToFile(path.join(host.data, 'copy.conf'));
    store(ram, 'vtr.instance.Pie64_2.dpi="160"');
    const image = says('"Pie64" is not an image; there are Nougat32, Nougat64');
    assert.throws(() => bridge.instances(), image, 'although the library has not loaded it yet');
    conf.commitToFile(path.join(host.data, 'copy.conf'));
    store(ram);
    assert.throws(() => bridge.instances(), image, 'although the file has it no more');
    assert.throws(() => bridge.instancesJson(), image);
    await assert.rejects(bridge.instancesAsync(), image);
    conf.commitToFile(path.join(host.data, 'copy.conf'));
    assert.ok(JSON.parse(bridge.instancesJson()).some(({ instance }) => instance === 'Nougat64'));
    assert.deepStrictEqual(await bridge.instancesAsync(), bridge.instances());
});

test('a failed commit names the file and the cause', () => {
    conf.setString('vtr.machine_id', 'two\nlines');
    const log = path.join(host.data, 'Logs', 'Player.log');
    const message = `bridgeConfCommit failed with 22 (XERR_INVAL: an argument was refused) for ${path.join(host.data, 'vantrel.conf')}; the log ${log} has the cause`;
    assert.throws(() => conf.commit(), { constructor: BridgeError, message });
    assert.ok(fs.readFileSync(log, 'utf8').includes('invalid conf entry'));
    conf.setString('vtr.machine_id', '');
    const other = path.join(host.data, 'vantrel.conf', 'x');
    assert.throws(() => conf.commitToFile(other), (error) => error.file === other && error.codeName !== '');
});

test('a failed start of a program names it', () => {
    const failed = (file) => ({ constructor: BridgeError, file, codeName: 'XERR_NOENT' });
    assert.throws(() => bridge.launchApp('Nougat64', 'p'), failed('C:\\None\\QX-Player.exe'));
    assert.throws(() => bridge.installImage('Nougat32'), failed('C:\\None\\QX-MultiInstanceManager.exe'));
    assert.throws(() => bridge.installApk('Nougat64', 'C:\\a.apk'), failed('C:\\a.apk'));
});
