'use strict';
// A launched stand-in reports the app, and is asked to shut down.
const host = require('./host');
const { load } = require('qx-bridge');

host.setProduct('InstallDir', `${host.standins}\\`);
host.write('vantrel.conf', '');
const bridge = load(host.dll);
bridge.init(host.CLIENT);
bridge.on('appDisplayed', async ({ instance, package: name }) => {
    console.log('displayed', instance, name);
    // Both at once: the end waits for the call.
    await Promise.all([bridge.shutdownPlayer(instance, true), bridge.fini()]);
    console.log('finished');
});
bridge.listen(host.PATIENT);
host.served().then(() => bridge.launchApp('NodeTest', 'com.größe'));
