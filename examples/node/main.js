'use strict';
// A small host for Node: node main.js PATH-OF-QX-Bridge.dll [EVENTS]
// Lists the instances, reads a setting, waits for EVENTS events (default 0), and ends.

const { load } = require('qx-bridge');

const [file, wanted = '0'] = process.argv.slice(2);
const bridge = load(file);
bridge.init('Helper');

for (const { instance, displayName } of bridge.instances()) console.log('instance', instance, displayName);
console.log('locale', bridge.conf.getString('vtr.locale'));

let left = Number(wanted);
let timer = null;

async function end() {
    clearTimeout(timer);
    await bridge.fini(); // no listener is called after this
    console.log('finished');
}

function count() {
    if (--left === 0) end();
}

bridge.on('appInstalled', ({ instance, package: name, appLabel, versionName }) => {
    console.log('installed', instance, `${name}:`, appLabel, versionName);
    count();
});
bridge.on('appDisplayed', ({ instance, package: name }) => {
    console.log('displayed', instance, name);
    count();
});
bridge.once('listening', () => {
    console.log('listening');
    timer = setTimeout(end, left > 0 ? 30000 : 0);
});
bridge.listen().catch((error) => {
    console.error(error.message); // another process receives the events
    process.exitCode = 1;
    return bridge.fini();
});
