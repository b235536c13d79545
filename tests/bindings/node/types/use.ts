// The types, as a host in TypeScript uses them. Compiled only.
import { load, BridgeError, Instance, RESULT } from 'qx-bridge';

const bridge = load('QX-Bridge.dll');
bridge.init('Helper', { noConfFile: true, logFile: null });
const names: string[] = bridge.instances().map((one: Instance) => one.displayName);
const wide: bigint = bridge.conf.getI64('k');
bridge.conf.setI64('k', wide);
bridge.conf.setMultiString('k', names);
bridge.on('appInstalled', ({ appLabel, versionCode, isUpdate }) => {
    const label: string = appLabel;
    const code: number = versionCode;
    const update: boolean = isUpdate;
    return [label, code, update];
});
bridge.once('close', () => {});
bridge.once('installImageProgress', ({ progress }) => progress.toFixed(1));
const failed = (error: unknown) => error instanceof BridgeError && error.code === RESULT.ACCESS;
bridge.shutdownPlayer('N').catch(failed);
const end: Promise<void> = bridge.fini();
export { end };

// @ts-expect-error an event that does not exist
bridge.on('appMoved', () => {});
// @ts-expect-error an event without values
bridge.on('close', ({ code }) => code);
// @ts-expect-error a client that does not exist
bridge.init('Nobody');
// @ts-expect-error a value of another type
bridge.conf.setI32('k', '5');
// @ts-expect-error a field that the event does not have
bridge.on('appDisplayed', ({ appLabel }) => appLabel);
