'use strict';
// The constants of keys, and the suggestions for unknown names.

const assert = require('assert');
const { test } = require('node:test');
const { Key, keys, KeyError } = require('qx-bridge');
const { KEYS } = require('qx-bridge/bridge.generated');
const { requireProperty } = require('qx-bridge/keys');
const { didYouMean } = require('qx-bridge/suggestions');

const known = (one) => ({ ...one });

test('a constant of a global key', () => {
    assert.deepStrictEqual(known(keys.global.enableAdbAccess),
        { text: 'vtr.enable_adb_access', type: 'bool', default: '0', unit: '', allowed: [] });
    assert.ok(keys.global.enableAdbAccess instanceof Key);
    assert.strictEqual(`${keys.global.enableAdbAccess}`, 'vtr.enable_adb_access');
});

test('the constants of an instance', () => {
    const nougat = keys.instance('Nougat64');
    assert.deepStrictEqual(known(nougat.dpi),
        { text: 'vtr.instance.Nougat64.dpi', type: 'i32', default: '240', unit: 'dots per inch', allowed: [] });
    assert.deepStrictEqual(nougat.abiList.allowed, ['x86', 'x64', 'arm', 'arm64']);
    assert.throws(() => keys.instance(undefined), TypeError);
});

test('a dot in a property\'s name becomes a hump', () => {
    assert.strictEqual(keys.instance('N').statusAdbPort.text, 'vtr.instance.N.status.adb_port');
    assert.strictEqual(keys.global.mimMaxFps.text, 'vtr.mim.max_fps');
});

test('each key of the catalogue has a constant', () => {
    const texts = [...Object.values(keys.global), ...Object.values(keys.instance('N'))].map((one) => one.text);
    assert.deepStrictEqual(texts,
        KEYS.map(({ scope, name }) => (scope === 'global' ? `vtr.${name}` : `vtr.instance.N.${name}`)));
});

test('constants cannot be changed', () => {
    assert.throws(() => { keys.global.locale = 'x'; }, TypeError);
    assert.throws(() => { keys.global.locale.text = 'x'; }, TypeError);
});

test('a suggestion is at most two letters away, or three from a name of eight letters', () => {
    assert.strictEqual(didYouMean('locael', ['country', 'locale']).suggestion, 'locale');
    assert.strictEqual(didYouMean('localeabc', ['locale']).suggestion, 'locale');
    assert.strictEqual(didYouMean('xyzale', ['locale']).suggestion, '');
    assert.strictEqual(didYouMean('dpi', ['ram', 'dpi']).suggestion, 'dpi');
    assert.strictEqual(didYouMean('ra', ['rama', 'ram']).suggestion, 'ram', 'the nearest one');
    assert.strictEqual(didYouMean('a', []).words, '');
});

// The message of the error for a key, or null.
function wrong(key, type) {
    try {
        requireProperty(key, type);
    } catch (error) {
        assert.ok(error instanceof KeyError, String(error));
        assert.strictEqual(error.key, key);
        return error.message;
    }
    return null;
}

test('a key that does not exist', () => {
    assert.strictEqual(wrong('vtr.locael'), 'there is no key "vtr.locael"; did you mean "vtr.locale"?');
    assert.strictEqual(wrong('vtr.no_such_key_at_all'), 'there is no key "vtr.no_such_key_at_all"');
    assert.strictEqual(wrong('vtr.instance.N.dip'), 'there is no key "vtr.instance.N.dip"; did you mean "vtr.instance.N.dpi"?');
    assert.strictEqual(wrong('vtr.instance.dpi'), 'there is no key "vtr.instance.dpi"');
    assert.strictEqual(wrong('vrt.locale'), 'there is no key "vrt.locale"; did you mean "vtr.locale"?');
    assert.strictEqual(wrong(''), 'there is no key ""');
    assert.strictEqual(wrong('vtr.locale'), null);
});

test('a key of another type', () => {
    assert.strictEqual(wrong('vtr.instance.N.dpi', 'bool'), '"vtr.instance.N.dpi" is an i32, not a bool');
    assert.strictEqual(wrong('vtr.locale', 'i64'), '"vtr.locale" is a string, not an i64');
    assert.strictEqual(wrong('vtr.shared_folders', 'string'), '"vtr.shared_folders" is a multi-string, not a string');
    assert.strictEqual(wrong('vtr.locale', 'string'), null);
});
