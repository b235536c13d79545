const { load, useFolders } = require('qx-bridge');

useFolders({ dataFolder: process.argv[2], installFolder: process.argv[2] });
const bridge = load();
bridge.init('Helper');
for (const one of bridge.instances()) console.log(one.instance, one.displayName);
bridge.fini();
