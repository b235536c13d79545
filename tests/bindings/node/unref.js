'use strict';
const host = require('./host');
const { load } = require('qx-bridge');

host.write('vantrel.conf', '');
const bridge = load(host.dll);
bridge.init(host.CLIENT);
bridge.listen(host.PATIENT).then(() => bridge.unref());
process.on('exit', () => console.log('no reason to stay'));
