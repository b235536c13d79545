'use strict';
const fs = require('fs');
const path = require('path');
const host = require('./host');
const { load } = require('qx-bridge');

host.write('vantrel.conf', 'vtr.instance.Nougat64.dpi="240"\n');
const logFile = path.join(host.data, 'own ü.log');
const bridge = load(host.dll);
bridge.init(host.CLIENT, { noConfFile: true, logFile });
console.log(JSON.stringify(bridge.instances()));
bridge.fini().then(() => {
    if (fs.readFileSync(logFile, 'utf8').includes('Launcher_bridge')) console.log('logged');
});
