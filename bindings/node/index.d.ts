/**
 * QX-Bridge.dll for Node.js and Electron. The conventions of bridge.h hold; what differs is said
 * here. A configuration key that does not exist, or one of another type than the function's, ends
 * the process: that is the library's way.
 */
import { EventEmitter } from 'events';
import { BridgeEvents } from './bridge.generated';

/** Result codes and events. */
export * from './bridge.generated';

/** Who the host is. Two hosts of one kind share a server name: only the first gets events. */
export type ClientId = 'Launcher' | 'Installer' | 'LogCollector' | 'Helper' | 'Uninstaller';

export const CLIENTS: readonly ClientId[];

/** A function of the library answered with a code other than 0, or without its text. */
export class BridgeError extends Error {
    readonly name: 'BridgeError';
    /** The function, as bridge.h calls it. */
    readonly operation: string;
    readonly code: number;
}

/** An instance, as the configuration has it. */
export interface Instance {
    instance: string;
    displayName: string;
    imageName: string;
    deviceProfile: string;
    graphicsEngine: string;
    graphicsRenderer: string;
    /** MiB */
    ram: number;
    cpu: number;
}

/** An app, as the app cache of its instance has it. */
export interface App {
    package: string;
    activity: string;
    appLabel: string;
    versionCode: number;
    versionName: string;
    iconFilePath: string;
}

/**
 * Typed access to the configuration, by full key: "vtr.<name>" or "vtr.instance.<instance>.<name>".
 * Set functions stage a change; the file has it after commit(). They throw BridgeError.
 */
export interface Configuration {
    getBool(key: string): boolean;
    getI32(key: string): number;
    getI64(key: string): bigint;
    getString(key: string): string;
    getMultiString(key: string): string[];
    setBool(key: string, value: boolean): void;
    setI32(key: string, value: number): void;
    setI64(key: string, value: bigint | number): void;
    setString(key: string, value: string): void;
    /** Elements, or their stored form: joined by ",". */
    setMultiString(key: string, value: readonly string[] | string): void;
    commit(): void;
    /**
     * Writes the whole configuration with the staged changes into another file. Afterwards nothing is
     * staged: a later commit() does not bring these changes to the product's file.
     */
    commitToFile(path: string): void;
}

export interface InitOptions {
    /** Starts with the catalogue's defaults and without a configuration file. */
    noConfFile?: boolean;
    /** File to log into instead of the product's log. One that cannot be opened is fatal. */
    logFile?: string | null;
}

/** What a new instance is to be. */
export interface FreshInstance {
    imageName: string;
    cpu: number;
    /** MiB */
    ram: number;
    graphicEngine: string;
    graphicRenderer: string;
    deviceProfile: string;
}

/** The library; there is one in a process. Not for worker threads. */
export interface Bridge extends EventEmitter {
    readonly conf: Configuration;

    /** Starts the library. Throws BridgeError: 22 for an unknown client; -1 for a version mismatch, or a
     * configuration file that is missing or malformed. */
    init(clientId: ClientId, options?: InitOptions): void;

    /** Starts the event server. From here on events are emitted, and Node does not end by itself. */
    listen(): void;

    /**
     * Stops the library, once and for all. From this call on no event of the library is emitted and
     * every other function throws; the promise tells when the event server has stopped. 'close' is
     * emitted then: events.on(bridge, event, { close: ['close'] }) ends with it.
     */
    fini(): Promise<void>;

    /** Whether listening keeps Node from ending: as for a server of net. */
    ref(): this;
    unref(): this;

    instances(): Instance[];
    apps(instance: string): App[];

    /** These start a program and return; what becomes of the work arrives as events. */
    launchApp(instance: string, packageName: string): void;
    launchAppStore(instance: string, store: string, packageName: string): void;
    launchUrl(instance: string, url: string): void;
    installApk(instance: string, apkFilePath: string): void;
    uninstallApp(instance: string, packageName: string): void;
    installImage(imageName: string): void;
    createFreshInstance(wanted: FreshInstance): void;

    /** Asks one player, or the manager and every player, to shut down; on a thread of its own. */
    shutdownPlayer(instance: string, flag?: boolean): Promise<void>;
    shutdown(): Promise<void>;

    on<E extends keyof BridgeEvents>(event: E, listener: (values: BridgeEvents[E]) => void): this;
    on(event: 'close', listener: () => void): this;
    once<E extends keyof BridgeEvents>(event: E, listener: (values: BridgeEvents[E]) => void): this;
    once(event: 'close', listener: () => void): this;
    off<E extends keyof BridgeEvents>(event: E, listener: (values: BridgeEvents[E]) => void): this;
    off(event: 'close', listener: () => void): this;
    addListener<E extends keyof BridgeEvents>(event: E, listener: (values: BridgeEvents[E]) => void): this;
    addListener(event: 'close', listener: () => void): this;
    removeListener<E extends keyof BridgeEvents>(event: E, listener: (values: BridgeEvents[E]) => void): this;
    removeListener(event: 'close', listener: () => void): this;
}

/** Loads QX-Bridge.dll, with the Qt DLLs from beside it; a second call gives the same object. */
export function load(file?: string): Bridge;
