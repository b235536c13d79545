'use strict';
// The messages and members of errors.

const assert = require('assert');
const { test } = require('node:test');
const errors = require('qx-bridge');

const { BridgeError, BridgeUsageError, KeyError, PreflightError } = errors;

test('a failed call names its cause, its file and the log', () => {
    const error = new BridgeError('bridgeConfCommit', 13, { file: 'C:\\D\\vantrel.conf', log: 'C:\\D\\Logs\\Player.log' });
    assert.strictEqual(error.message,
        'bridgeConfCommit failed with 13 (XERR_ACCES: access denied) for C:\\D\\vantrel.conf; the log C:\\D\\Logs\\Player.log has the cause');
    const { name, operation, code, codeName, text, file, log } = error;
    assert.deepStrictEqual({ name, operation, code, codeName, text, file, log }, {
        name: 'BridgeError', operation: 'bridgeConfCommit', code: 13, codeName: 'XERR_ACCES', text: 'access denied',
        file: 'C:\\D\\vantrel.conf', log: 'C:\\D\\Logs\\Player.log',
    });
});

test('a failed call without a file', () => {
    assert.strictEqual(new BridgeError('bridgeApiInit', -1, { log: 'l' }).message,
        'bridgeApiInit failed with -1 (XERR_FAILURE: it failed; the log has the cause); the log l has the cause');
});

test('an error of Windows has its number', () => {
    const { codeName, text, message } = new BridgeError('bridgeLaunchApp', 101223, { log: 'l' });
    assert.deepStrictEqual([codeName, text], ['', 'Windows error 1223']);
    assert.strictEqual(message, 'bridgeLaunchApp failed with 101223 (Windows error 1223); the log l has the cause');
});

test('a code without a name', () => {
    assert.strictEqual(new BridgeError('f', 4711, { log: 'l' }).message, 'f failed with 4711 (result code 4711); the log l has the cause');
});

test('a key error is a usage error', () => {
    const error = new KeyError('m', 'k', 's');
    assert.ok(error instanceof BridgeUsageError);
    assert.deepStrictEqual([error.name, error.key, error.suggestion], ['KeyError', 'k', 's']);
});

test('a start that would fail lists what is in the way', () => {
    const problems = [{ what: 'a is missing', remedy: 'make it' }, { what: 'b is old', remedy: 'update it' }];
    const error = new PreflightError(problems);
    assert.strictEqual(error.message, 'a is missing: make it\nb is old: update it');
    assert.strictEqual(error.problems, problems);
});

test('time-outs and aborts have the names of Node\'s errors', () => {
    const aborted = new errors.AbortError('why');
    assert.deepStrictEqual([aborted.name, aborted.code, aborted.cause], ['AbortError', 'ABORT_ERR', 'why']);
    assert.strictEqual(new errors.TimeoutError('commitAsync', 5).message, 'commitAsync took longer than 5 ms');
});
