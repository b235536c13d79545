'use strict';
// A listener that throws, and the event after it.
const host = require('./host');
const { load } = require('qx-bridge');

host.write('vantrel.conf', '');
const bridge = load(host.dll);
bridge.init(host.CLIENT);
process.on('uncaughtException', (error) => console.log('uncaught:', error.message));
bridge.on('appDisplayed', async ({ package: name }) => {
    if (name === 'q') {
        console.log('next', name);
        await bridge.fini();
        console.log('finished');
    }
});
bridge.on('appDisplayed', ({ package: name }) => {
    if (name === 'p') throw new Error('of the listener');
});
bridge.listen(host.PATIENT);
host.send('app-displayed', 'N', 'p').then(() => host.send('app-displayed', 'N', 'q'));
