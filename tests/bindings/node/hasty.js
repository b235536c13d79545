'use strict';
// Listens and ends at once, and looks at neither promise's failure.
const host = require('./host');
const { load } = require('qx-bridge');

host.write('vantrel.conf', '');
const bridge = load(host.dll);
bridge.init(host.CLIENT);
bridge.listen(host.PATIENT);
bridge.fini().then(() => console.log('finished'));
