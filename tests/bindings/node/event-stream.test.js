'use strict';
// Streams of events, without the library: their events, their order and their end.

const assert = require('assert');
const { test } = require('node:test');
const { AbortError, EventOverflow } = require('qx-bridge');
const { EventStream } = require('qx-bridge/event-stream');

function open(names, options) {
    const forgotten = [];
    const stream = new EventStream(names, options, (one) => forgotten.push(one));
    return { stream, forgotten };
}

const displayed = (name) => ['appDisplayed', { instance: 'N', package: name }];
const DONE = { value: undefined, done: true };

test('events are delivered in their order, with their names', async () => {
    const { stream } = open(['appDisplayed', 'instanceListUpdated']);
    stream.receive(...displayed('p'));
    stream.receive('appUninstalled', { instance: 'N', package: 'p' });
    stream.receive('instanceListUpdated', {});
    assert.deepStrictEqual((await stream.next()).value, { event: 'appDisplayed', instance: 'N', package: 'p' });
    assert.deepStrictEqual((await stream.next()).value, { event: 'instanceListUpdated' });
});

test('one name need not be in a list', async () => {
    const { stream } = open('appDisplayed');
    const next = stream.next();
    stream.receive(...displayed('p'));
    assert.strictEqual((await next).value.package, 'p');
});

test('readers that wait are served in their order', async () => {
    const { stream } = open('appDisplayed');
    const both = [stream.next(), stream.next()];
    stream.receive(...displayed('p'));
    stream.receive(...displayed('q'));
    assert.deepStrictEqual((await Promise.all(both)).map(({ value }) => value.package), ['p', 'q']);
});

test('a full buffer is delivered, and then the loss is an error', async () => {
    const { stream, forgotten } = open('appDisplayed', { limit: 2 });
    for (const name of ['p', 'q', 'r', 's']) stream.receive(...displayed(name));
    assert.deepStrictEqual(forgotten, [stream]);
    const seen = [];
    await assert.rejects(async () => {
        for await (const one of stream) seen.push(one.package);
    }, (error) => error instanceof EventOverflow && error.limit === 2 && error.message === 'more than 2 events were waiting to be read');
    assert.deepStrictEqual(seen, ['p', 'q']);
    assert.deepStrictEqual(await stream.next(), DONE);
});

test('the end comes after what is buffered', async () => {
    const { stream } = open('appDisplayed');
    stream.receive(...displayed('p'));
    stream.end();
    stream.receive(...displayed('q'));
    const seen = [];
    for await (const one of stream) seen.push(one.package);
    assert.deepStrictEqual(seen, ['p']);
});

test('readers that wait get the end', async () => {
    const { stream } = open('appDisplayed');
    const both = [stream.next(), stream.next()];
    stream.end();
    assert.deepStrictEqual(await Promise.all(both), [DONE, DONE]);
});

test('leaving the loop closes the stream', async () => {
    const { stream, forgotten } = open('appDisplayed');
    stream.receive(...displayed('p'));
    stream.receive(...displayed('q'));
    for await (const _ of stream) break;
    assert.deepStrictEqual(forgotten, [stream]);
    assert.deepStrictEqual(await stream.next(), DONE);
});

test('a signal ends it at once', async () => {
    const stop = new AbortController();
    const { stream, forgotten } = open('appDisplayed', { signal: stop.signal });
    const both = [stream.next(), stream.next()];
    stop.abort('enough');
    await assert.rejects(both[0], (error) => error instanceof AbortError && error.cause === 'enough');
    assert.deepStrictEqual(await both[1], DONE);
    assert.deepStrictEqual(forgotten, [stream]);

    const later = open('appDisplayed', { signal: new AbortController().signal });
    const other = new AbortController();
    const buffered = open('appDisplayed', { signal: other.signal }).stream;
    buffered.receive(...displayed('p'));
    other.abort();
    await assert.rejects(buffered.next(), AbortError);
    later.stream.end();
    assert.throws(() => open('appDisplayed', { signal: stop.signal }), AbortError);
});

test('wrong arguments', () => {
    assert.throws(() => open('appMoved'), /there is no event "appMoved"/);
    assert.throws(() => open(['appDisplayed', undefined]), TypeError);
    for (const limit of [0, -1, 1.5, '5']) assert.throws(() => open('appDisplayed', { limit }), RangeError);
    assert.throws(() => open('appDisplayed', { signal: 5 }), TypeError);
});
