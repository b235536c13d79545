import { load, useFolders, Instance } from 'qx-bridge';

declare const process: { argv: string[] };
declare const console: { log(...values: string[]): void };

useFolders({ dataFolder: process.argv[2], installFolder: process.argv[2] });
const bridge = load();
bridge.init('Helper');
bridge.instances().forEach((one: Instance) => console.log(one.instance, one.displayName));
const end: Promise<void> = bridge.fini();
export { end };
