'use strict';
// Work and its event, without the library.

const assert = require('assert');
const { test } = require('node:test');
const { AbortError, BridgeUsageError, TimeoutError } = require('qx-bridge');
const { Works, imageInstalled } = require('qx-bridge/work');

const nothing = () => {};
const listening = () => new Works(nothing);
const ofInstance = (name) => (values) => values.instance === name;
const apk = (instance, status = 0) => ['apkInstallCompleted', { instance, status, apkFilePath: 'f' }];

test('the event that belongs to the work is its outcome', async () => {
    const works = listening();
    const work = works.start('installApk', 'apkInstallCompleted', ofInstance('N'), nothing);
    const finished = work.finished();
    works.receive(...apk('M', 1));
    works.receive('appDisplayed', { instance: 'N', package: 'p' });
    works.receive(...apk('N', 2));
    works.receive(...apk('N', 3));
    assert.strictEqual((await finished).status, 2);
    assert.strictEqual((await work.finished({ timeout: 0 })).status, 2, 'asked again');
});

test('an event that comes while the program is being started counts', async () => {
    const works = listening();
    const work = works.start('installApk', 'apkInstallCompleted', ofInstance('N'), () => works.receive(...apk('N', 2)));
    assert.strictEqual((await work.finished()).status, 2);
});

test('a failed start is thrown, and nothing waits for it', async () => {
    const works = listening();
    assert.throws(() => works.start('a', 'createInstanceCompleted', () => true, () => { throw new Error('no program'); }), /no program/);
    const next = works.start('b', 'createInstanceCompleted', () => true, nothing);
    works.receive('createInstanceCompleted', { status: 7, instance: 'N' });
    assert.strictEqual((await next.finished()).status, 7);
});

test('instances are created in the order of the calls', async () => {
    const works = listening();
    const two = [1, 2].map(() => works.start('createFreshInstance', 'createInstanceCompleted', () => true, nothing));
    works.receive('createInstanceCompleted', { status: 0, instance: 'A' });
    works.receive('createInstanceCompleted', { status: 0, instance: 'B' });
    assert.deepStrictEqual(await Promise.all(two.map(async (one) => (await one.finished()).instance)), ['A', 'B']);
});

test('an event is the outcome of one work, the oldest that it fits to', async () => {
    const works = listening();
    const two = ['N', 'N'].map((name) => works.start('installApk', 'apkInstallCompleted', ofInstance(name), nothing));
    works.receive(...apk('N', 1));
    assert.strictEqual((await two[0].finished()).status, 1);
    await assert.rejects(two[1].finished({ timeout: 1 }), TimeoutError);
    works.receive(...apk('N', 2));
    assert.strictEqual((await two[1].finished()).status, 2);
});

test('an image is installed with status 2, and other statuses are progress', async () => {
    const seen = [];
    const works = listening();
    const progress = ({ status, progress: done }) => seen.push([status, done]);
    const work = works.start('installImage', 'installImageProgress', imageInstalled('A', { progress }), nothing);
    for (const [imageName, status, done] of [['A', 1, 25], ['B', 2, 100], ['A', 1, 50], ['A', 2, 100], ['A', 1, 0]]) {
        works.receive('installImageProgress', { imageName, status, progress: done });
    }
    assert.deepStrictEqual(await work.finished(), { imageName: 'A', status: 2, progress: 100 });
    assert.deepStrictEqual(seen, [[1, 25], [1, 50]]);
    const plain = works.start('installImage', 'installImageProgress', imageInstalled('A'), nothing);
    works.receive('installImageProgress', { imageName: 'A', status: 1, progress: 0 });
    works.receive('installImageProgress', { imageName: 'A', status: 2, progress: 1 });
    assert.strictEqual((await plain.finished()).progress, 1);
    assert.throws(() => imageInstalled('A', { progress: 5 }), TypeError);
});

test('time-outs and signals end the wait but not the work', async () => {
    const works = listening();
    const work = works.start('installApk', 'apkInstallCompleted', ofInstance('N'), nothing);
    await assert.rejects(work.finished({ timeout: 1 }),
        (error) => error instanceof TimeoutError && error.message === 'installApk took longer than 1 ms');
    const stop = new AbortController();
    const waiting = work.finished({ signal: stop.signal, timeout: 60000 });
    stop.abort();
    await assert.rejects(waiting, AbortError);
    await assert.rejects(work.finished({ signal: stop.signal }), AbortError);
    await assert.rejects(work.finished({ timeout: -1 }), RangeError);
    await assert.rejects(work.finished({ timeout: '5' }), RangeError);
    await assert.rejects(work.finished({ signal: {} }), TypeError);
    works.receive(...apk('N', 2));
    assert.strictEqual((await work.finished()).status, 2);
});

test('the wait removes its listener from the signal at its end', async () => {
    const works = listening();
    const listeners = new Set();
    const signal = {
        aborted: false, addEventListener: (_, one) => listeners.add(one), removeEventListener: (_, one) => listeners.delete(one),
    };
    const work = works.start('installApk', 'apkInstallCompleted', ofInstance('N'), nothing);
    const first = work.finished({ signal });
    await assert.rejects(work.finished({ signal, timeout: 1 }), TimeoutError);
    assert.strictEqual(listeners.size, 1);
    works.receive(...apk('N'));
    await first;
    assert.strictEqual(listeners.size, 0);
});

test('without listening there is no outcome', async () => {
    const works = new Works(() => { throw new BridgeUsageError('call listen() first'); });
    const work = works.start('installApk', 'apkInstallCompleted', ofInstance('N'), nothing);
    await assert.rejects(work.finished(), /call listen\(\) first/);
});

test('the end of the library is the end of the wait', async () => {
    const works = listening();
    const work = works.start('installApk', 'apkInstallCompleted', ofInstance('N'), nothing);
    works.start('installApk', 'apkInstallCompleted', ofInstance('N'), nothing); // nothing waits for this work
    const finished = work.finished();
    works.end();
    await assert.rejects(finished, /the library ended before the work did/);
    await assert.rejects(work.finished(), BridgeUsageError);
});
