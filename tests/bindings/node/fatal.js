'use strict';
// A programming error that reaches the library itself, past the binding's checks: fatal.js FUNCTION.
// It ends the process.
const host = require('./host');
const native = require('qx-bridge/native');

host.write('vantrel.conf', '');
const library = native.load(host.dll);
library.bridgeApiInit(native.keptText(host.CLIENT));
const calls = {
    missing: () => library.bridgeConfGetString('vtr.no_such_key'),
    otherType: () => library.bridgeConfGetI32('vtr.locale'),
    getI64: () => library.bridgeConfGetI64('vtr.locale'),
    setI64: () => library.bridgeConfSetI64('vtr.locale', 1n << 40n),
};
calls[process.argv[2]]();
console.log('still here');
