// Two iterations over events, which end with the library. One of them has had no event.
import { on } from 'events';
import { createRequire } from 'module';

const require = createRequire(import.meta.url);
const host = require('./host');
const { load } = require('qx-bridge');

host.write('vantrel.conf', '');
const bridge = load(host.dll);
bridge.init(host.CLIENT);
bridge.once('close', () => console.log('closed'));
bridge.listen(host.PATIENT);

async function displayed() {
    for await (const [{ package: name }] of on(bridge, 'appDisplayed', { close: ['close'] })) {
        console.log('displayed', name);
        bridge.fini();
    }
    console.log('no more displayed');
}

async function uninstalled() {
    for await (const _ of on(bridge, 'appUninstalled', { close: ['close'] })) console.log('uninstalled');
    console.log('no more uninstalled');
}

const both = Promise.all([displayed(), uninstalled()]);
await host.send('app-displayed', 'N', 'p');
await both;
console.log('finished');
