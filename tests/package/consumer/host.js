const { load } = require('qx-bridge');

const bridge = load(process.argv[2]);
bridge.init('Helper');
for (const one of bridge.instances()) console.log(one.instance, one.displayName);
bridge.fini();
