const { load } = require('qx-bridge');

const bridge = load(process.argv[2]);
bridge.init('Helper');
bridge.on('appDisplayed', ({ instance, package: name }) => {
    console.log(instance, 'shows', name);
    bridge.fini();
});
bridge.listen();
