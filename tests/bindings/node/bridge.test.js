'use strict';
// The Node binding in Node for Windows, with the real library. The library starts once per process, so the
// tests depend on their order, and scripts.js has those that end the process.

const assert = require('assert');
const fs = require('fs');
const path = require('path');
const { test } = require('node:test');
const host = require('./host');
const { load, BridgeError, CLIENTS, EVENTS, RESULT } = require('qx-bridge');

host.write('vantrel.conf', 'vtr.instance.Nougat64.display_name="Größe 日本"\nvtr.instance.Nougat64.dpi="240"\nvtr.instance.Nougat64.ram="4096"\n');
const APPS = [
    { activity: 'com.b.Main', appLabel: 'B', package: 'com.b', versionCode: -2, versionName: '2' },
    { activity: 'com.a.Start', appLabel: '日本', package: 'com.a', versionCode: 7, versionName: '' },
];
host.write('Engine/Nougat64/AppCache/AppCache.json', JSON.stringify(APPS));
const bridge = load(host.dll);

const failure = (operation, code) => ({ constructor: BridgeError, operation, code });

// The next events of these names.
function collect(names, count) {
    const seen = [];
    return new Promise((resolve) => {
        for (const name of names) {
            bridge.on(name, (values) => {
                seen.push([name, values]);
                if (seen.length !== count) return;
                for (const one of names) bridge.removeAllListeners(one);
                resolve(seen);
            });
        }
    });
}

test('there is one library in a process', () => {
    assert.strictEqual(load(host.dll), bridge);
    assert.throws(() => load('elsewhere.dll'), /is already loaded/);
});

test('nothing is called before the initialisation', () => {
    assert.throws(() => bridge.instances(), /call init\(\) first/);
    assert.throws(() => bridge.listen(), /call init\(\) first/);
});

test('a client that the library does not know is refused', () => {
    assert.throws(() => bridge.init('Nobody'), failure('bridgeApiInit', RESULT.INVALID_ARGUMENT));
    assert.throws(() => bridge.instances(), /call init\(\) first/);
    assert.throws(() => bridge.init(undefined), TypeError);
});

test('the initialisation', () => {
    assert.deepStrictEqual(CLIENTS, ['Launcher', 'Installer', 'LogCollector', 'Helper', 'Uninstaller']);
    // A new string: only the binding keeps its bytes.
    bridge.init(Buffer.from(host.CLIENT).toString());
    assert.ok(host.log().some((line) => line.includes('In bridgeApiInit Launcher')));
});

test('every type of the configuration is read', () => {
    assert.strictEqual(bridge.conf.getString('vtr.instance.Nougat64.display_name'), 'Größe 日本');
    assert.strictEqual(bridge.conf.getI32('vtr.instance.Nougat64.dpi'), 240);
    assert.strictEqual(bridge.conf.getBool('vtr.enable_adb_access'), false);
    assert.strictEqual(bridge.conf.getString('vtr.machine_id'), '');
});

test('a change is seen at once, and by the file after the commit', () => {
    bridge.conf.setString('vtr.instance.Nougat64.display_name', '"Ünï" \\ 第二');
    bridge.conf.setI32('vtr.instance.Nougat64.dpi', -2147483648);
    bridge.conf.setBool('vtr.enable_adb_access', true);
    bridge.conf.setMultiString('vtr.shared_folders', ['Bilder', 'Größe']);
    assert.strictEqual(bridge.conf.getString('vtr.instance.Nougat64.display_name'), '"Ünï" \\ 第二');
    assert.strictEqual(bridge.conf.getI32('vtr.instance.Nougat64.dpi'), -2147483648);
    assert.strictEqual(bridge.conf.getBool('vtr.enable_adb_access'), true);
    assert.deepStrictEqual(bridge.conf.getMultiString('vtr.shared_folders'), ['Bilder', 'Größe']);
    assert.ok(host.read('vantrel.conf').includes('vtr.instance.Nougat64.dpi="240"'));
    bridge.conf.commit();
    const lines = host.read('vantrel.conf').split(/\r?\n/);
    for (const line of ['vtr.instance.Nougat64.dpi="-2147483648"', 'vtr.enable_adb_access="1"', 'vtr.shared_folders="Bilder,Größe"']) {
        assert.ok(lines.includes(line), line);
    }
    bridge.conf.setMultiString('vtr.shared_folders', 'a,b');
    assert.deepStrictEqual(bridge.conf.getMultiString('vtr.shared_folders'), ['a', 'b']);
    bridge.conf.setMultiString('vtr.shared_folders', []);
    assert.deepStrictEqual(bridge.conf.getMultiString('vtr.shared_folders'), []);
    bridge.conf.setI32('vtr.instance.Nougat64.dpi', 320);
    bridge.conf.commit();
});

test('a commit into another file', () => {
    const file = path.join(host.data, 'Ordner ü', 'copy.conf');
    bridge.conf.commitToFile(file);
    assert.ok(fs.readFileSync(file, 'utf8').includes('vtr.instance.Nougat64.dpi="320"'));
    assert.throws(() => bridge.conf.commitToFile(path.join(host.data, 'vantrel.conf', 'x')), BridgeError);
});

test('a change that cannot be stored fails the commit with its code', () => {
    bridge.conf.setString('vtr.machine_id', 'two\nlines');
    assert.throws(() => bridge.conf.commit(), failure('bridgeConfCommit', RESULT.INVALID_ARGUMENT));
    bridge.conf.setString('vtr.machine_id', 'x'.repeat(5000));
    assert.throws(() => bridge.conf.commit(), failure('bridgeConfCommit', RESULT.TOO_BIG));
    bridge.conf.setString('vtr.machine_id', '');
    bridge.conf.commit();
});

test('values that the library would misread never reach it', () => {
    const { conf } = bridge;
    assert.throws(() => conf.getString(null), TypeError);
    assert.throws(() => conf.getString('vtr.locale\0x'), TypeError);
    assert.throws(() => conf.setString('vtr.locale', 5), TypeError);
    assert.throws(() => conf.setBool('vtr.enable_adb_access', 1), TypeError);
    for (const number of [1.5, 2 ** 31, -(2 ** 31) - 1, NaN, '5']) {
        assert.throws(() => conf.setI32('vtr.instance.Nougat64.dpi', number), RangeError);
    }
    for (const number of [2 ** 60, 1n << 63n, 0.5]) assert.throws(() => conf.setI64('k', number), RangeError);
    assert.throws(() => conf.setMultiString('vtr.shared_folders', ['a,b']), TypeError);
    assert.throws(() => bridge.launchApp('N'), TypeError);
    assert.strictEqual(conf.getI32('vtr.instance.Nougat64.dpi'), 320);
});

test('the instances', () => {
    assert.deepStrictEqual(bridge.instances().map(({ instance, displayName, ram }) => [instance, displayName, ram]),
        [['Nougat64', '"Ünï" \\ 第二', 4096]]);
    assert.deepStrictEqual(Object.keys(bridge.instances()[0]).sort(),
        ['cpu', 'deviceProfile', 'displayName', 'graphicsEngine', 'graphicsRenderer', 'imageName', 'instance', 'ram']);
});

test('the apps of an instance', () => {
    const folder = `${host.data}\\Engine/Nougat64/AppCache/`;
    assert.deepStrictEqual(bridge.apps('Nougat64'), [
        { ...APPS[1], iconFilePath: `${folder}com.a.png` },
        { ...APPS[0], iconFilePath: `${folder}com.b.png` },
    ]);
    assert.deepStrictEqual(bridge.apps('Nougat32'), []);
    host.write('Engine/Broken/AppCache/AppCache.json', '[3]');
    assert.throws(() => bridge.apps('Broken'), failure('bridgeGetInstalledApps', RESULT.FAILURE));
});

test('missing programs', () => {
    const calls = {
        bridgeLaunchApp: () => bridge.launchApp('Nougat64', 'p'),
        bridgeLaunchAppStore: () => bridge.launchAppStore('Nougat64', 's', 'p'),
        bridgeLaunchUrl: () => bridge.launchUrl('Nougat64', 'u'),
        bridgeInstallApk: () => bridge.installApk('Nougat64', 'f'),
        bridgeUninstallApp: () => bridge.uninstallApp('Nougat64', 'p'),
        bridgeInstallImage: () => bridge.installImage('Nougat32'),
        bridgeCreateFreshInstance: () =>
            bridge.createFreshInstance({ imageName: 'Nougat64', cpu: 2, ram: 2048, graphicEngine: 'aga', graphicRenderer: 'dx', deviceProfile: 's21' }),
    };
    for (const [operation, call] of Object.entries(calls)) assert.throws(call, failure(operation, RESULT.NO_ENTRY));
});

test('the client id outlives the call', async () => {
    for (let i = 0; i < 20; ++i) {
        global.gc();
        Array.from({ length: 5000 }, (_, n) => Buffer.alloc(9, `x${n}`));
    }
    // listen() makes the server's name from the client id, and the stand-in connects to "Launcher".
    bridge.listen(host.PATIENT);
    const seen = collect(['appDisplayed'], 1);
    await host.send('app-displayed', 'N', 'p');
    assert.deepStrictEqual(await seen, [['appDisplayed', { instance: 'N', package: 'p' }]]);
});

test('all nine events arrive on the event loop', async () => {
    const seen = collect(Object.values(EVENTS), 9);
    await host.send('app-installed', 'Nougat64', 'com.größe', 'Main', '第二 App', '-5', '1.0β', 'C:\\Ü.png', 'true');
    await host.send('app-uninstalled', 'Nougat64', 'com.größe');
    await host.send('apk-install-completed', 'Nougat64', '-1', 'C:\\Пример.apk');
    await host.send('instance-list-updated');
    await host.send('image-install-progress', 'Nougat32', '1', '33.125');
    await host.send('create-instance-completed', '-2', 'Nougat64_1');
    await host.send('instance-configuration-changed', 'Nougat64');
    await host.send('app-displayed', 'Nougat64', '😀 app');
    await host.send('account-list-updated', 'Nougat64', 'jürgen@example.com', '2');
    assert.deepStrictEqual(await seen, [
        ['appInstalled', {
            instance: 'Nougat64', package: 'com.größe', activity: 'Main', appLabel: '第二 App', versionCode: -5,
            versionName: '1.0β', iconFilePath: 'C:\\Ü.png', isUpdate: true,
        }],
        ['appUninstalled', { instance: 'Nougat64', package: 'com.größe' }],
        ['apkInstallCompleted', { instance: 'Nougat64', status: -1, apkFilePath: 'C:\\Пример.apk' }],
        ['instanceListUpdated', {}],
        ['installImageProgress', { imageName: 'Nougat32', status: 1, progress: 33.125 }],
        ['createInstanceCompleted', { status: -2, instance: 'Nougat64_1' }],
        ['instanceConfigurationChanged', { instance: 'Nougat64' }],
        ['appDisplayed', { instance: 'Nougat64', package: '😀 app' }],
        ['accountListUpdated', { instance: 'Nougat64', emailId: 'jürgen@example.com', action: 2 }],
    ]);
});

test('empty texts arrive empty', async () => {
    const seen = collect(['appInstalled', 'instanceConfigurationChanged'], 2);
    await host.send('app-installed', '', '', '', '', '0', '', '', 'false');
    await host.send('instance-configuration-changed', '');
    assert.deepStrictEqual(await seen, [
        ['appInstalled', {
            instance: '', package: '', activity: '', appLabel: '', versionCode: 0, versionName: '', iconFilePath: '', isUpdate: false,
        }],
        ['instanceConfigurationChanged', { instance: '' }],
    ]);
});

test('a listener may call the library', async () => {
    const answer = new Promise((resolve) => {
        bridge.once('instanceListUpdated', () => resolve(bridge.instances().length));
    });
    await host.send('instance-list-updated');
    assert.strictEqual(await answer, 1);
});

test('listening again changes nothing for the listeners', async () => {
    bridge.listen(host.PATIENT);
    const seen = collect(['appUninstalled'], 1);
    await host.send('app-uninstalled', 'N', 'p');
    assert.strictEqual((await seen).length, 1);
});

test('the library ends once, and rejects calls after that', async () => {
    let closed = 0;
    bridge.on('close', () => ++closed);
    const end = bridge.fini();
    assert.strictEqual(bridge.fini(), end);
    assert.strictEqual(closed, 0);
    assert.throws(() => bridge.instances(), /after fini\(\)/);
    await end;
    assert.throws(() => bridge.init(host.CLIENT), /once per process/);
    await assert.rejects(bridge.shutdown(), /after fini\(\)/);
    await bridge.fini();
    assert.strictEqual(closed, 1);
});

test('existing programs', () => {
    host.plays('displayed NodeTest com.größe\nfinished\n', 'launch');
    const said = fs.readFileSync(host.output, 'utf8');
    assert.ok(said.includes('plrShutdownRpc(true)'), said);
});

test('iterations over events end with the library', () => {
    host.plays('displayed p\nclosed\nno more displayed\nno more uninstalled\nfinished\n', 'iterate');
});

test('the end while events arrive', () => {
    host.plays('finished, silent since\n', 'finish');
});

test('an exception of a listener is the host\'s, and the next event comes', () => {
    host.plays('uncaught: of the listener\nnext q\nfinished\n', 'throws');
});

test('without a configuration file, and with a log of the host\'s', () => {
    host.plays('[]\nlogged\n', 'noFile');
});

test('Node ends by itself while it listens only after unref()', () => {
    host.plays('no reason to stay\n', 'unref');
});

test('the library itself ends the process for a key that does not exist, or of another type', () => {
    const breaks = () => host.log().filter((line) => line.includes('FATAL: DEBUG BREAK: ')).length;
    for (const call of ['missing', 'otherType', 'getI64', 'setI64']) {
        const before = breaks();
        const { status, output } = host.runScript('scripts.js', 'fatal', call);
        assert.deepStrictEqual([status, output.includes('still here')], [0x80000003, false], `${call} ${output}`);
        assert.strictEqual(breaks(), before + 1, call);
    }
});
