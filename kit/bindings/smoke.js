// smoke.js DLL LOG: the Node binding with the real library, without a configuration file.
const assert = require('assert');
const { load } = require('qx-bridge');

const bridge = load(process.argv[2]);
bridge.init('Helper', { noConfFile: true, logFile: process.argv[3] });
bridge.conf.setString('vtr.locale', 'Größe 日本');
assert.strictEqual(bridge.conf.getString('vtr.locale'), 'Größe 日本');
assert.deepStrictEqual(bridge.instances(), []);
bridge.fini();
