'use strict';
// A configuration file, read as the library reads it.

const assert = require('assert');
const path = require('path');
const { test } = require('node:test');
const host = require('./host');
const { readConfFile } = require('qx-bridge/conf-file');

function read(content) {
    const { instances, values } = readConfFile(host.write('read.conf', content));
    return { instances: [...instances], values: Object.fromEntries(values) };
}

test('a file that does not exist is empty', () => {
    const { instances, values } = readConfFile(path.join(host.data, 'none.conf'));
    assert.deepStrictEqual([instances.size, values.size], [0, 0]);
});

test('instances are those that lines name', () => {
    const { instances } = read('vtr.locale="x"\nvtr.instance.Größe_1.dpi="1"\nvtr.instance.N.status.adb_port="2"\n');
    assert.deepStrictEqual(instances, ['Größe_1', 'N']);
});

test('the last line of a key counts', () => {
    assert.deepStrictEqual(read('vtr.locale="a"\nvtr.locale="b"\n').values, { 'vtr.locale': 'b' });
});

test('a value loses its first and last character, and ends at a NUL', () => {
    assert.deepStrictEqual(read('vtr.locale="a"b"\nvtr.country="x"\r\nvtr.guid="a\0b"\nvtr.machine_id="\n').values,
        { 'vtr.locale': 'a"b', 'vtr.country': 'x"', 'vtr.guid': 'a', 'vtr.machine_id': '' });
});

test('the last line needs no line feed', () => {
    assert.deepStrictEqual(read('vtr.locale="a"').values, { 'vtr.locale': 'a' });
});

test('no value comes after a line at which a load stops', () => {
    const after = 'vtr.locale="a"\n';
    for (const line of ['no line', '', 'vtr.locale=', 'vtr.no_such_key="1"', '\ufeffvtr.country="x"', `vtr.guid="${'x'.repeat(4086)}"`]) {
        assert.deepStrictEqual(read(`${line}\n${after}`).values, {}, line.slice(0, 20));
    }
    assert.strictEqual(Object.keys(read(`vtr.guid="${'x'.repeat(4085)}"\n${after}`).values).length, 2, 'a line of 4096 bytes');
});

test('a line is as long as its bytes, whether they are UTF-8 or not', () => {
    const line = (bytes) => Buffer.concat([Buffer.from('vtr.guid="'), Buffer.alloc(bytes, 0xff), Buffer.from('"\nvtr.locale="ü"\n')]);
    assert.strictEqual(read(line(4085)).values['vtr.locale'], 'ü');
    assert.deepStrictEqual(read(line(4086)).values, {});
    assert.deepStrictEqual(read(`vtr.guid="${'ü'.repeat(2043)}"\nvtr.locale="x"\n`).values, {}, 'letters of two bytes');
});

test('instances are found after such a line too', () => {
    assert.deepStrictEqual(read('no line\nvtr.instance.N.dpi="1"\n'), { instances: ['N'], values: {} });
});
