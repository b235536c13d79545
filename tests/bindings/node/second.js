'use strict';
// A second process of a client: second.js [ignore]. It finishes before it ends, because a thread that is
// just starting must not be cut off under Wine.
const host = require('./host');
const { load } = require('qx-bridge');

host.write('vantrel.conf', '');
const bridge = load(host.dll);
bridge.init(host.CLIENT);
const listening = bridge.listen(host.PATIENT);
bridge.on('listening', () => console.log('listening'));

const isAlive = () => process.getActiveResourcesInfo().includes('Timeout');
const tell = (how) => (error) => {
    console.log(`${how}: ${error.name} ${error.processId}: ${error.message}`);
    console.log(isAlive() ? 'waits for events' : 'no reason to stay');
    return bridge.fini();
};

if (process.argv[2] === 'ignore') process.on('unhandledRejection', tell('unhandled'));
else listening.catch(tell('refused'));
