'use strict';
// The end in the middle of a flood of events, with the event loop kept busy.
const { spawn } = require('child_process');
const path = require('path');
const host = require('./host');
const { load } = require('qx-bridge');

host.write('vantrel.conf', '');
process.env.QX_STANDIN_SCRIPT = host.write('flood.script', 'event-flood 20000 app-displayed N p{n}\n');
const bridge = load(host.dll);
bridge.init(host.CLIENT);
let count = 0;
let ended = false;
bridge.on('appDisplayed', async () => {
    if (ended) console.log('an event after the end');
    if (++count !== 100) return;
    ended = true;
    // The event thread is certainly waiting for this thread now.
    Atomics.wait(new Int32Array(new SharedArrayBuffer(4)), 0, 0, 200);
    await bridge.fini();
    setImmediate(() => console.log('finished, silent since'));
    flood.kill();
});
let flood;
bridge.listen(host.PATIENT);
host.served().then(() => {
    flood = spawn(path.join(host.standins, 'QX-Player.exe'), ['--instance', 'NodeFlood'], { stdio: 'ignore' });
});
