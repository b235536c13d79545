'use strict';
// Calls that do not block the event loop while another program holds the configuration's lock. The library
// starts once per process, so the tests depend on their order.

const assert = require('assert');
const fs = require('fs');
const koffi = require('koffi');
const path = require('path');
const { test } = require('node:test');
const host = require('./host');
const { load, AbortError, BridgeError, TimeoutError } = require('qx-bridge');

const kernel = koffi.load('kernel32.dll');
const createMutex = kernel.func('intptr_t CreateMutexW(void *security, int32_t owned, str16 name)');
const waitForObject = kernel.func('uint32_t WaitForSingleObject(intptr_t handle, uint32_t milliseconds)');
const releaseMutex = kernel.func('int32_t ReleaseMutex(intptr_t handle)');

// A mutex belongs to a thread: this one, on which no call of this file commits.
const lock = createMutex(null, 0, 'Global\\vtr_conf_nvo');
const hold = () => assert.strictEqual(waitForObject(lock, 60000), 0);
const release = () => assert.notStrictEqual(releaseMutex(lock), 0);

host.write('vantrel.conf', 'vtr.instance.Nougat64.dpi="240"\n');
const APPS = [{ activity: 'a', appLabel: 'A', package: 'com.a', versionCode: 1, versionName: '1' }];
host.write('Engine/Nougat64/AppCache/AppCache.json', JSON.stringify(APPS));
const bridge = load(host.dll);
const { conf } = bridge;
const dpi = () => /dpi="(\d+)"/.exec(host.read('vantrel.conf'))[1];

test('nothing is called before the initialisation', async () => {
    await assert.rejects(conf.commitAsync(), /call init\(\) first/);
    await assert.rejects(bridge.instancesAsync(), /call init\(\) first/);
    await assert.rejects(bridge.appsAsync('N'), /call init\(\) first/);
    bridge.init(host.CLIENT);
});

test('listings', async () => {
    assert.deepStrictEqual(await bridge.instancesAsync(), bridge.instances());
    const apps = await bridge.appsAsync('Nougat64', { timeout: 60000 });
    assert.deepStrictEqual([apps.length, apps], [1, bridge.apps('Nougat64')]);
    await assert.rejects(async () => bridge.appsAsync(5), TypeError);
});

test('a commit', async () => {
    conf.setI32('vtr.instance.Nougat64.dpi', 320);
    await conf.commitAsync();
    assert.strictEqual(dpi(), '320');
});

test('a commit into another file', async () => {
    const file = path.join(host.data, 'copy.conf');
    await conf.commitToFileAsync(file);
    assert.ok(fs.readFileSync(file, 'utf8').includes('dpi="320"'));
    const wrong = path.join(file, 'x');
    await assert.rejects(conf.commitToFileAsync(wrong), (error) => error instanceof BridgeError && error.file === wrong);
});

test('the event loop runs while a commit waits', async () => {
    conf.setI32('vtr.instance.Nougat64.dpi', 160);
    hold();
    let isOver = false;
    const commit = conf.commitAsync().then(() => { isOver = true; });
    for (let i = 0; i < 20; ++i) await new Promise(setImmediate);
    assert.deepStrictEqual([isOver, dpi()], [false, '320']);
    release();
    await commit;
    assert.strictEqual(dpi(), '160');
});

test('a time-out ends the wait, and the commit continues', async () => {
    conf.setI32('vtr.instance.Nougat64.dpi', 200);
    hold();
    await assert.rejects(conf.commitAsync({ timeout: 5 }),
        (error) => error instanceof TimeoutError && error.message === 'commitAsync took longer than 5 ms');
    const stop = new AbortController();
    const second = conf.commitToFileAsync(path.join(host.data, 'later.conf'), { signal: stop.signal });
    stop.abort('enough');
    await assert.rejects(second, (error) => error instanceof AbortError && error.cause === 'enough');
    release();
    while (!fs.existsSync(path.join(host.data, 'later.conf'))) await new Promise(setImmediate);
    await conf.commitAsync();
    assert.strictEqual(dpi(), '200');
});

test('an aborted signal starts nothing', async () => {
    conf.setI32('vtr.instance.Nougat64.dpi', 280);
    const stop = new AbortController();
    stop.abort();
    await assert.rejects(conf.commitAsync({ signal: stop.signal }), AbortError);
    await assert.rejects(conf.commitAsync({ timeout: 'soon' }), RangeError);
    await conf.commitToFileAsync(path.join(host.data, 'copy.conf')); // runs after any commit that was started
    assert.strictEqual(dpi(), '200');
});

test('the end waits for calls that run', async () => {
    hold();
    const order = [];
    const commit = conf.commitToFileAsync(path.join(host.data, 'last.conf')).then(() => order.push('commit'));
    const end = bridge.fini().then(() => order.push('end'));
    for (let i = 0; i < 20; ++i) await new Promise(setImmediate);
    assert.deepStrictEqual(order, []);
    release();
    await Promise.all([commit, end]);
    assert.deepStrictEqual(order, ['commit', 'end']);
    await assert.rejects(conf.commitAsync(), /after fini\(\)/);
});
