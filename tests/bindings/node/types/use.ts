// A host in TypeScript, which is only compiled.
import {
    load, keys, preflight, BridgeError, EventOverflow, Instance, Key, KeyError, ListenError, PreflightError, RESULT, Work,
} from 'qx-bridge';

const bridge = load('QX-Bridge.dll');
bridge.init('Helper', { noConfFile: true, logFile: null });
const names: string[] = bridge.instances().map((one: Instance) => one.displayName);
const wide: bigint = bridge.conf.getI64('k');
bridge.conf.setI64('k', wide);
bridge.conf.setMultiString('vtr.shared_folders', names);
bridge.on('appInstalled', ({ appLabel, versionCode, isUpdate }) => {
    const label: string = appLabel;
    const code: number = versionCode;
    const update: boolean = isUpdate;
    return [label, code, update];
});
bridge.once('close', () => {});
bridge.once('listening', () => {});
bridge.once('installImageProgress', ({ progress }) => progress.toFixed(1));
const failed = (error: unknown) => error instanceof BridgeError && error.code === RESULT.ACCESS && error.codeName + error.file;
bridge.shutdownPlayer('N').catch(failed);
const end: Promise<void> = bridge.fini();
export { end };

// Constants.
const access: boolean = bridge.conf.get(keys.global.enableAdbAccess);
const dpi: number = bridge.conf.get(keys.instance('Nougat64').dpi);
const port: number = bridge.conf.get(keys.instance('Nougat64').statusAdbPort);
const folders: string[] = bridge.conf.get(keys.global.sharedFolders);
bridge.conf.set(keys.global.locale, 'fr-FR');
const details: [string, string, string, readonly string[]] =
    [keys.global.locale.text, keys.global.locale.default, keys.global.locale.unit, keys.global.locale.allowed];
const constant: Key<number> = keys.instance('Nougat64').ram;

// Texts.
const byText: boolean = bridge.conf.get('vtr.enable_adb_access');
const ofInstance: number = bridge.conf.get('vtr.instance.Nougat64.status.adb_port');
const dotted: boolean = bridge.conf.get('vtr.status.raw_mode');
bridge.conf.set('vtr.instance.Nougat64_1.display_name', 'N');
bridge.conf.getI32('vtr.instance.Nougat64.dpi');
const instance = names[0];
bridge.conf.getI32(`vtr.instance.${instance}.dpi`);
const ofAnyInstance: number = bridge.conf.get(`vtr.instance.${instance}.dpi` as const);
const unknownAsYet: string = names[0];
bridge.conf.getBool(unknownAsYet);
bridge.conf.set(unknownAsYet, 5);
export { access, dpi, port, folders, details, constant, byText, ofInstance, ofAnyInstance, dotted };

// Waiting, events, work, errors.
async function later() {
    await bridge.listen({ timeout: 100 });
    await bridge.conf.commitAsync({ timeout: 1000, signal: null });
    const later: Instance[] = await bridge.instancesAsync({ signal: new AbortController().signal });
    for await (const one of bridge.events(['appDisplayed', 'appInstalled'], { limit: 5 })) {
        if (one.event === 'appInstalled') return one.versionName;
        const shown: string = one.package;
        return shown;
    }
    const work: Work<{ status: number }> = bridge.installApk('N', 'f');
    const { status } = await work.finished({ timeout: 5 });
    bridge.installImage('Nougat32', { progress: ({ progress }) => progress.toFixed(0) });
    return [later, status];
}
later().catch((error) => {
    if (error instanceof KeyError) return error.suggestion + error.key;
    if (error instanceof ListenError) return error.processId;
    if (error instanceof EventOverflow) return error.limit;
    return error instanceof PreflightError ? error.problems.map(({ what, remedy }) => what + remedy) : preflight('Helper');
});

// @ts-expect-error an event that does not exist
bridge.on('appMoved', () => {});
// @ts-expect-error an event without values
bridge.on('close', ({ code }) => code);
// @ts-expect-error a client that does not exist
bridge.init('Nobody');
// @ts-expect-error a value of another type
bridge.conf.setI32('vtr.instance.Nougat64.dpi', '5');
// @ts-expect-error a field that the event does not have
bridge.on('appDisplayed', ({ appLabel }) => appLabel);
// @ts-expect-error a constant that does not exist
bridge.conf.get(keys.global.enableAdb);
// @ts-expect-error a value of another type than the constant's
bridge.conf.set(keys.global.enableAdbAccess, 1);
// @ts-expect-error a result of another type than the constant's
const wrong: boolean = bridge.conf.get(keys.instance('Nougat64').dpi);
// @ts-expect-error a constant of another type
const other: Key<boolean> = keys.global.locale;
// @ts-expect-error a text that names no key
bridge.conf.get('vtr.locael');
// @ts-expect-error a text that names no key of an instance
bridge.conf.getI32('vtr.instance.Nougat64.dip');
// @ts-expect-error a text that names a key of another type
bridge.conf.getBool('vtr.instance.Nougat64.dpi');
// @ts-expect-error the same, in a text whose end is certain
bridge.conf.getBool(`vtr.instance.${instance}.dpi` as const);
// @ts-expect-error a value of another type than the text's
bridge.conf.set('vtr.enable_adb_access', 'yes');
// @ts-expect-error an event that does not exist
bridge.events('appMoved');
// @ts-expect-error a field that none of the events has
(async () => { for await (const one of bridge.events(['appDisplayed', 'appInstalled'])) one.emailId; })();
// @ts-expect-error the outcome has no such field
bridge.launchApp('N', 'p').finished().then(({ status }) => status);
// @ts-expect-error errors are made by the binding
new KeyError();
