import { createRequire } from 'module';
import * as names from 'qx-bridge';
import binding, { load, useFolders } from 'qx-bridge';

useFolders({ dataFolder: process.argv[2], installFolder: process.argv[2] });
const bridge = load();
bridge.init('Helper');
for (const one of bridge.instances()) console.log(one.instance, one.displayName);
await bridge.fini();

// Every name of the other entry is here, and is the same.
const required = createRequire(import.meta.url)('qx-bridge');
const same = Object.keys(required).every((name) => names[name] === required[name]);
if (same && binding === required && required.load() === bridge) console.log('one library');
