'use strict';
const host = require('./host');
const { load } = require('qx-bridge');

host.write('vantrel.conf', '');
const bridge = load(host.dll);
bridge.init(host.CLIENT);
bridge.conf.getString('vtr.no_such_key');
