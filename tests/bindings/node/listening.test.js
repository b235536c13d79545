'use strict';
// Listening, streams of events and outcomes of work, with the stand-ins of the product's programs. The
// library starts once per process, so the tests depend on their order.

const assert = require('assert');
const { once } = require('events');
const { test } = require('node:test');
const host = require('./host');
const { BridgeUsageError, EventOverflow } = require('qx-bridge');

host.setProduct('InstallDir', `${host.standins}\\`);
const bridge = host.start('vtr.instance.Nougat64.dpi="240"\n');

test('work has no outcome without listening', async () => {
    process.env.QX_STANDIN_CLIENTS = 'none';
    const work = bridge.uninstallApp('NodeEarly', 'p');
    process.env.QX_STANDIN_CLIENTS = host.CLIENT;
    await assert.rejects(work.finished(), (error) => error instanceof BridgeUsageError && error.message === 'call listen() first');
});

test('listening is confirmed', async () => {
    const event = once(bridge, 'listening');
    const promise = bridge.listen(host.PATIENT);
    assert.strictEqual(await promise, undefined);
    await event;
    assert.strictEqual(bridge.listen(), promise, 'once for all');
    assert.throws(() => bridge.listen({ timeout: 'long' }), RangeError);
});

test('the error in a second process of the same client names the first', () => {
    const refusal = `ListenError ${process.pid}: process ${process.pid} has the events of client "Launcher"\nno reason to stay\n`;
    host.plays(`refused: ${refusal}`, 'second');
    host.plays(`unhandled: ${refusal}`, 'second', 'ignore');
});

test('a stream of two events', async () => {
    const stream = bridge.events(['appDisplayed', 'appUninstalled']);
    const ofOne = bridge.events('appUninstalled');
    await host.send('app-displayed', 'N', 'p');
    await host.send('app-uninstalled', 'N', 'größe');
    const seen = [];
    for await (const one of stream) {
        seen.push(one);
        if (seen.length === 2) break;
    }
    assert.deepStrictEqual(seen, [
        { event: 'appDisplayed', instance: 'N', package: 'p' }, { event: 'appUninstalled', instance: 'N', package: 'größe' },
    ]);
    assert.deepStrictEqual((await ofOne.next()).value, seen[1]);
    await ofOne.return();
});

test('a stream that is not read reports the loss of events', async () => {
    const stream = bridge.events('appDisplayed', { limit: 1 });
    const all = bridge.events('appDisplayed');
    await host.send('app-displayed', 'N', 'p');
    await host.send('app-displayed', 'N', 'q');
    for (let i = 0; i < 2; ++i) await all.next();
    assert.strictEqual((await stream.next()).value.package, 'p');
    await assert.rejects(stream.next(), EventOverflow);
    await all.return();
});

test('an instance of another program can be read once it is loaded', async () => {
    host.write('vantrel.conf', 'vtr.instance.Nougat64.dpi="240"\nvtr.instance.Nougat32.dpi="wide"\nvtr.instance.Nougat32.ram="1024"\n');
    assert.throws(() => bridge.conf.getI32('vtr.instance.Nougat32.ram'), /is not loaded yet/);
    const updated = once(bridge, 'instanceListUpdated');
    await host.send('instance-list-updated');
    await updated;
    assert.strictEqual(bridge.conf.getI32('vtr.instance.Nougat32.ram'), 1024);
    assert.throws(() => bridge.conf.getI32('vtr.instance.Nougat32.dpi'), /has a value that cannot be read: "wide"/);
    host.write('vantrel.conf', 'vtr.instance.Nougat32.dpi="160"\n');
    const changed = once(bridge, 'instanceConfigurationChanged');
    await host.send('instance-configuration-changed', 'Nougat32');
    await changed;
    assert.strictEqual(bridge.conf.getI32('vtr.instance.Nougat32.dpi'), 160);
});

test('the outcomes of work', async () => {
    const displayed = bridge.launchApp('NodeWork', 'com.größe');
    assert.deepStrictEqual(await displayed.finished({ timeout: 60000 }), { instance: 'NodeWork', package: 'com.größe' });
    const installed = bridge.installApk('NodeWork', 'C:\\Größe\\com.a.apk');
    assert.deepStrictEqual(await installed.finished({ timeout: 60000 }),
        { instance: 'NodeWork', status: 0, apkFilePath: 'C:\\Größe\\com.a.apk' });
    const uninstalled = bridge.uninstallApp('NodeWork', 'com.a');
    assert.deepStrictEqual(await uninstalled.finished({ timeout: 60000 }), { instance: 'NodeWork', package: 'com.a' });
    const seen = [];
    const image = bridge.installImage('Nougat32', { progress: ({ progress }) => seen.push(progress) });
    assert.deepStrictEqual(await image.finished({ timeout: 60000 }), { imageName: 'Nougat32', status: 2, progress: 100 });
    assert.deepStrictEqual(seen, [25, 50, 75]);
    const created = bridge.createFreshInstance(
        { imageName: 'Nougat64', cpu: 2, ram: 2048, graphicEngine: 'aga', graphicRenderer: 'dx', deviceProfile: 's21' });
    assert.deepStrictEqual(await created.finished({ timeout: 60000 }), { status: 0, instance: 'Nougat64_1' });
    await bridge.shutdownPlayer('NodeWork');
});

test('the end of the library ends streams and waits', async () => {
    const stream = bridge.events('appDisplayed');
    const next = stream.next();
    const work = bridge.installApk('NodeNever', 'f');
    // Its stand-in sends the event of the work only after the end, when events are ignored.
    const finished = assert.rejects(work.finished(), /the library ended before the work did/);
    await bridge.fini();
    assert.deepStrictEqual(await next, { value: undefined, done: true });
    await finished;
    assert.deepStrictEqual(await bridge.events('appDisplayed').next(), { value: undefined, done: true });
});

test('an end before the library listens is no error', () => {
    host.plays('finished\n', 'hasty');
});
