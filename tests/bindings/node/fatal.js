'use strict';
// A programming error, which ends the process: fatal.js FUNCTION
const host = require('./host');
const { load } = require('qx-bridge');

host.write('vantrel.conf', '');
const bridge = load(host.dll);
bridge.init(host.CLIENT);
const calls = {
    missing: () => bridge.conf.getString('vtr.no_such_key'),
    otherType: () => bridge.conf.getI32('vtr.locale'),
    getI64: () => bridge.conf.getI64('vtr.locale'),
    setI64: () => bridge.conf.setI64('vtr.locale', 1n << 40n),
};
calls[process.argv[2]]();
console.log('still here');
