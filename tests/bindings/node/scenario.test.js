'use strict';
// The host that plays scenarios says what it is asked for.

const assert = require('assert');
const { test } = require('node:test');
const host = require('./host');

test('a scenario is played to its end', () => {
    host.write('vantrel.conf', 'vtr.instance.Nougat64.dpi="240"\nvtr.shared_folders="a,b"\n');
    const { status, output } = host.runScript('scenario.js', host.dll, host.data, 'C:\\None\\',
        'preflight\tHelper', 'init\tHelper', 'get\tvtr.shared_folders', 'set\tvtr.shared_folders\tc|d', 'get\tvtr.shared_folders',
        'gettyped', 'get\tvtr.locael', 'get\tvtr.locale\tbool', 'launch\tNougat64\tp', 'commit', 'fini');
    assert.deepStrictEqual([status, output.split('\n')], [0, [
        'fine', 'started', 'multi-string a|b', 'set', 'multi-string c|d', 'typed false 240',
        'key error there is no key "vtr.locael"; did you mean "vtr.locale"?',
        'key error "vtr.locale" is a string, not a bool', 'error 2 XERR_NOENT', 'committed', 'ended', 'finished', '',
    ]]);
});

test('a start that would fail is counted', () => {
    const { status, output } = host.runScript('scenario.js', host.dll, '', 'C:\\None\\', 'preflight\tHelper', 'init\tHelper');
    assert.deepStrictEqual([status, output.split('\n')], [0, [
        'problem the registry value HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantrel_nvo "UserDefinedDir" is missing',
        'preflight 1', 'finished', '',
    ]]);
});
