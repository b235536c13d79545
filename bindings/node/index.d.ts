/**
 * QX-Bridge.dll for Node.js and Electron. The conventions of bridge.h apply, with the differences
 * documented here. Checks before each call turn most fatal errors into exceptions: see KeyError and
 * PreflightError.
 */
import { EventEmitter } from 'events';
import { ApkInstallCompleted, AppDisplayed, AppUninstalled, BridgeEvents, CreateInstanceCompleted, InstallImageProgress } from './bridge.generated';
import { Key, KeyText, Value, ValueOf } from './keys';

/** Result codes, images, events and properties. */
export * from './bridge.generated';
export * from './keys';
export * from './errors';

/** The kind of host. Two hosts of one kind share a server name: only the first receives events. */
export type ClientId = 'Launcher' | 'Installer' | 'LogCollector' | 'Helper' | 'Uninstaller';

export const CLIENTS: readonly ClientId[];

/** An instance in the configuration. */
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

/** An app in the app cache of its instance. */
export interface App {
    package: string;
    activity: string;
    appLabel: string;
    versionCode: number;
    versionName: string;
    iconFilePath: string;
}

/** The part of AbortSignal that is used here. */
export interface Signal {
    readonly aborted: boolean;
    addEventListener(type: 'abort', listener: () => void): void;
    removeEventListener(type: 'abort', listener: () => void): void;
}

/** Limits of a wait, after which it rejects with AbortError or TimeoutError. The operation itself goes on. */
export interface Limits {
    signal?: Signal | null;
    /** Milliseconds; no limit by default. */
    timeout?: number | null;
}

/**
 * Typed access to the configuration, by a constant of `keys` or by full key: "vtr.<name>" or
 * "vtr.instance.<instance>.<name>". Set functions stage a change; commit() writes it to the file.
 *
 * All throw KeyError before the library is called: for a key that does not exist or has another type, an
 * instance that does not exist or is not loaded yet, and a value that is missing or cannot be read.
 */
export interface Configuration {
    get<T extends Value>(key: Key<T>): T;
    get<K extends string>(key: K & KeyText<K, Value>): string extends K ? Value : ValueOf<K>;
    set<T extends Value>(key: Key<T>, value: T): void;
    set<K extends string>(key: K & KeyText<K, Value>, value: string extends K ? Value : ValueOf<K>): void;

    getBool<K extends string>(key: K & KeyText<K, boolean>): boolean;
    getI32<K extends string>(key: K & KeyText<K, number>): number;
    /** The catalogue has no key of this type: it always throws KeyError. */
    getI64(key: string): bigint;
    getString<K extends string>(key: K & KeyText<K, string>): string;
    getMultiString<K extends string>(key: K & KeyText<K, string[]>): string[];
    setBool<K extends string>(key: K & KeyText<K, boolean>, value: boolean): void;
    setI32<K extends string>(key: K & KeyText<K, number>, value: number): void;
    /** The catalogue has no key of this type: it always throws KeyError. */
    setI64(key: string, value: bigint | number): void;
    setString<K extends string>(key: K & KeyText<K, string>, value: string): void;
    /** Elements, or their stored form: joined by ",". */
    setMultiString<K extends string>(key: K & KeyText<K, string[]>, value: readonly string[] | string): void;

    /**
     * Makes the keys of a new instance settable; the first set gives it its defaults. The name up to its
     * first "_" must be one of IMAGES, else KeyError is thrown.
     */
    addInstance(name: string): void;

    commit(): void;
    /**
     * Writes the whole configuration with the staged changes to another file. Afterwards nothing is
     * staged: a later commit() does not write these changes to the product's file.
     */
    commitToFile(path: string): void;
    /** The same without blocking the event loop. */
    commitAsync(options?: Limits): Promise<void>;
    commitToFileAsync(path: string, options?: Limits): Promise<void>;
}

export interface InitOptions {
    /** Starts with the defaults of the catalogue and without a configuration file. */
    noConfFile?: boolean;
    /** File to log into instead of the product's log. */
    logFile?: string | null;
}

/** A reason for which init() would fail, and its remedy. */
export interface Problem {
    what: string;
    remedy: string;
}

/** The settings of a new instance. */
export interface FreshInstance {
    imageName: string;
    cpu: number;
    /** MiB */
    ram: number;
    graphicEngine: string;
    graphicRenderer: string;
    deviceProfile: string;
}

/** Work that a program was started for. */
export interface Work<Outcome> {
    /**
     * Resolves with the values of the event that reports the outcome; check its status. May be called
     * again, even after a timeout or the event. Rejects with BridgeUsageError without listen(), or when the
     * library ends first.
     */
    finished(options?: Limits): Promise<Outcome>;
}

export interface ImageOptions {
    /** Called for each event of this image except the last. */
    progress?: ((values: InstallImageProgress) => void) | null;
}

/** An event of a stream: its name and its values. */
export type StreamEvent<E extends keyof BridgeEvents> = { [N in E]: { event: N } & BridgeEvents[N] }[E];

export interface EventStream<E extends keyof BridgeEvents> extends AsyncIterableIterator<StreamEvent<E>> {
    return(): Promise<IteratorResult<StreamEvent<E>>>;
}

export interface StreamOptions {
    /** The largest number of buffered events; 10000 by default. */
    limit?: number;
    signal?: Signal | null;
}

/** The library, one per process. Not for worker threads. */
export interface Bridge extends EventEmitter {
    readonly conf: Configuration;

    /**
     * Starts the library. Throws PreflightError when a check before the start fails, and BridgeError with
     * code 22 for an unknown client or -1 for a malformed configuration file.
     */
    init(clientId: ClientId, options?: InitOptions): void;

    /**
     * Starts the event server. From here on events are emitted, and Node keeps running. The promise
     * resolves, and 'listening' is emitted, when this process receives the events. It rejects with
     * ListenError when another process receives them, or when none does within the timeout (milliseconds;
     * 10000 by default). If the host ignores the promise, a rejection is an unhandledRejection.
     */
    listen(options?: { timeout?: number }): Promise<void>;

    /**
     * The events of these names from now on, in order, until the library ends. When more than `limit`
     * events wait, the stream delivers the buffered ones, throws EventOverflow and ends.
     */
    events<E extends keyof BridgeEvents>(names: E | readonly E[], options?: StreamOptions): EventStream<E>;

    /**
     * Stops the library for the rest of the process. From this call on no event of the library is emitted
     * and every other function throws. The promise resolves when the event server has stopped. 'close' is
     * then emitted; it ends an iteration over events.on(bridge, event, { close: ['close'] }).
     */
    fini(): Promise<void>;

    /** Whether listening keeps Node running, as for a net.Server. */
    ref(): this;
    unref(): this;

    /**
     * Throws KeyError when the file has an instance whose image is not one of IMAGES, or whose "ram" or
     * "cpus" cannot be read.
     */
    instances(): Instance[];
    /** The listing as the library's JSON text. */
    instancesJson(): string;
    instancesAsync(options?: Limits): Promise<Instance[]>;
    apps(instance: string): App[];
    appsJson(instance: string): string;
    appsAsync(instance: string, options?: Limits): Promise<App[]>;

    /** These start a program and return at once; an event reports the outcome. */
    launchApp(instance: string, packageName: string): Work<AppDisplayed>;
    launchAppStore(instance: string, store: string, packageName: string): void;
    launchUrl(instance: string, url: string): void;
    installApk(instance: string, apkFilePath: string): Work<ApkInstallCompleted>;
    uninstallApp(instance: string, packageName: string): Work<AppUninstalled>;
    /** Its outcome is the event with status 2. */
    installImage(imageName: string, options?: ImageOptions): Work<InstallImageProgress>;
    /** Its outcome is the next createInstanceCompleted event. Events complete the calls in order. */
    createFreshInstance(wanted: FreshInstance): Work<CreateInstanceCompleted>;

    /** Asks one player, or the manager and every player, to shut down, on a separate thread. */
    shutdownPlayer(instance: string, flag?: boolean): Promise<void>;
    shutdown(): Promise<void>;

    on<E extends keyof BridgeEvents>(event: E, listener: (values: BridgeEvents[E]) => void): this;
    on(event: 'listening' | 'close', listener: () => void): this;
    once<E extends keyof BridgeEvents>(event: E, listener: (values: BridgeEvents[E]) => void): this;
    once(event: 'listening' | 'close', listener: () => void): this;
    off<E extends keyof BridgeEvents>(event: E, listener: (values: BridgeEvents[E]) => void): this;
    off(event: 'listening' | 'close', listener: () => void): this;
    addListener<E extends keyof BridgeEvents>(event: E, listener: (values: BridgeEvents[E]) => void): this;
    addListener(event: 'listening' | 'close', listener: () => void): this;
    removeListener<E extends keyof BridgeEvents>(event: E, listener: (values: BridgeEvents[E]) => void): this;
    removeListener(event: 'listening' | 'close', listener: () => void): this;
}

/** The problems with which init() would fail; empty when there are none. Starts nothing. */
export function preflight(clientId: ClientId, options?: InitOptions): Problem[];

export interface Folders {
    /** Contains vantrel.conf and Logs. */
    dataFolder: string;
    /** Contains the product's programs or the stand-ins. */
    installFolder: string;
}

/**
 * For development: gives this process its own HKEY_LOCAL_MACHINE with these folders and the library's
 * version, without administrator rights. Call it before init(). The rest of HKEY_LOCAL_MACHINE is hidden from
 * this process; processes that it starts see the real one. A later call replaces the folders.
 */
export function useFolders(folders: Folders): void;

/**
 * Loads QX-Bridge.dll, with the Qt DLLs beside it. A second call returns the same object. Without an argument
 * it loads the DLL in this package's folder bin, else the one in the current folder. A file in Electron's
 * app.asar is loaded from app.asar.unpacked.
 */
export function load(file?: string): Bridge;
