import binding, { load, useFolders, Instance, PreflightError } from 'qx-bridge';

declare const process: { argv: string[] };
declare const console: { log(...values: string[]): void };

useFolders({ dataFolder: process.argv[2], installFolder: process.argv[2] });
const bridge = load();
if (binding.preflight('Helper').length > 0) throw new Error(PreflightError.name);
bridge.init('Helper');
bridge.instances().forEach((one: Instance) => console.log(one.instance, one.displayName));
await bridge.fini();
