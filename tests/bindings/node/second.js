'use strict';
// A second process of a client: second.js [ignore]
const host = require('./host');
const { load } = require('qx-bridge');

host.write('vantrel.conf', '');
const bridge = load(host.dll);
bridge.init(host.CLIENT);
const listening = bridge.listen(host.PATIENT);
bridge.on('listening', () => console.log('listening'));
process.on('exit', (status) => status === 0 && console.log('no reason to stay'));
if (process.argv[2] !== 'ignore') {
    listening.catch((error) => console.log(`${error.name} ${error.processId}: ${error.message}`));
}
