/**
 * QX-Bridge.dll for Node.js and Electron. The conventions of bridge.h hold; what differs is said
 * here. What would end the process where it can be seen beforehand is an exception: see KeyError and
 * PreflightError.
 */
import { EventEmitter } from 'events';
import { ApkInstallCompleted, AppDisplayed, AppUninstalled, BridgeEvents, CreateInstanceCompleted, InstallImageProgress } from './bridge.generated';
import { Key, KeyText, Value, ValueOf } from './keys';

/** Result codes, images, events and properties. */
export * from './bridge.generated';
export * from './keys';
export * from './errors';

/** Who the host is. Two hosts of one kind share a server name: only the first gets events. */
export type ClientId = 'Launcher' | 'Installer' | 'LogCollector' | 'Helper' | 'Uninstaller';

export const CLIENTS: readonly ClientId[];

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

/** Node's and the browsers' AbortSignal, as far as it is used here. */
export interface Signal {
    readonly aborted: boolean;
    addEventListener(type: 'abort', listener: () => void): void;
    removeEventListener(type: 'abort', listener: () => void): void;
}

/** When a promise stops waiting, with AbortError or TimeoutError. What it waits for goes on. */
export interface Limits {
    signal?: Signal | null;
    /** Milliseconds; without it there is no limit. */
    timeout?: number | null;
}

/**
 * Typed access to the configuration, by a constant of `keys` or by full key: "vtr.<name>" or
 * "vtr.instance.<instance>.<name>". Set functions stage a change; the file has it after commit().
 *
 * Before the library is asked, these throw KeyError: for a key that does not exist or has another type,
 * an instance that does not exist or is not loaded yet, and a value that is missing or cannot be read.
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
     * Lets the keys of a new instance be set; the first set gives it its defaults. The name up to its
     * first "_" is one of IMAGES. Throws KeyError for another name.
     */
    addInstance(name: string): void;

    commit(): void;
    /**
     * Writes the whole configuration with the staged changes into another file. Afterwards nothing is
     * staged: a later commit() does not bring these changes to the product's file.
     */
    commitToFile(path: string): void;
    /** These wait for other programs without keeping the event loop waiting. */
    commitAsync(options?: Limits): Promise<void>;
    commitToFileAsync(path: string, options?: Limits): Promise<void>;
}

export interface InitOptions {
    /** Starts with the catalogue's defaults and without a configuration file. */
    noConfFile?: boolean;
    /** File to log into instead of the product's log. */
    logFile?: string | null;
}

/** Something that init() would fail at, and what helps. */
export interface Problem {
    what: string;
    remedy: string;
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

/** Work that a program was started for. */
export interface Work<Outcome> {
    /**
     * The values of the event that tells the work's end; look at its status. It may be asked again, also
     * after a limit, and when the event has come already. Rejects with BridgeUsageError when nothing
     * listens, or when the library ends first.
     */
    finished(options?: Limits): Promise<Outcome>;
}

export interface ImageOptions {
    /** Called for each event of this image but the last. */
    progress?: ((values: InstallImageProgress) => void) | null;
}

/** An event of a stream: its name, and its values. */
export type StreamEvent<E extends keyof BridgeEvents> = { [N in E]: { event: N } & BridgeEvents[N] }[E];

export interface EventStream<E extends keyof BridgeEvents> extends AsyncIterableIterator<StreamEvent<E>> {
    return(): Promise<IteratorResult<StreamEvent<E>>>;
}

export interface StreamOptions {
    /** How many events may wait to be read: 10000, unless you say otherwise. */
    limit?: number;
    signal?: Signal | null;
}

/** The library; there is one in a process. Not for worker threads. */
export interface Bridge extends EventEmitter {
    readonly conf: Configuration;

    /**
     * Starts the library. Throws PreflightError for what can be seen beforehand, and BridgeError: 22 for
     * an unknown client; -1 for a configuration file that is malformed.
     */
    init(clientId: ClientId, options?: InitOptions): void;

    /**
     * Starts the event server. From here on events are emitted, and Node does not end by itself. The
     * promise, and 'listening', tell that the events come to this process; it rejects with ListenError
     * when another one has them, or when nothing does within the time-out (milliseconds; 10000). A host
     * that ignores the promise meets the rejection as Node's unhandledRejection.
     */
    listen(options?: { timeout?: number }): Promise<void>;

    /**
     * The events of these names from now on, in their order, until the library ends. When more than
     * `limit` wait to be read, the stream delivers these, throws EventOverflow and ends.
     */
    events<E extends keyof BridgeEvents>(names: E | readonly E[], options?: StreamOptions): EventStream<E>;

    /**
     * Stops the library, once and for all. From this call on no event of the library is emitted and
     * every other function throws; the promise tells when the event server has stopped. 'close' is
     * emitted then: events.on(bridge, event, { close: ['close'] }) ends with it.
     */
    fini(): Promise<void>;

    /** Whether listening keeps Node from ending: as for a server of net. */
    ref(): this;
    unref(): this;

    /**
     * Throws KeyError where the file has an instance of an image that is not one of IMAGES, or one whose
     * "ram" or "cpus" cannot be read.
     */
    instances(): Instance[];
    /** The same as the library's text. */
    instancesJson(): string;
    instancesAsync(options?: Limits): Promise<Instance[]>;
    apps(instance: string): App[];
    appsJson(instance: string): string;
    appsAsync(instance: string, options?: Limits): Promise<App[]>;

    /** These start a program and return; what becomes of the work arrives as events. */
    launchApp(instance: string, packageName: string): Work<AppDisplayed>;
    launchAppStore(instance: string, store: string, packageName: string): void;
    launchUrl(instance: string, url: string): void;
    installApk(instance: string, apkFilePath: string): Work<ApkInstallCompleted>;
    uninstallApp(instance: string, packageName: string): Work<AppUninstalled>;
    /** Its end is the event with status 2. */
    installImage(imageName: string, options?: ImageOptions): Work<InstallImageProgress>;
    /** Its end is the next instance that was created: they come in the order of the calls. */
    createFreshInstance(wanted: FreshInstance): Work<CreateInstanceCompleted>;

    /** Asks one player, or the manager and every player, to shut down; on a thread of its own. */
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

/** What init() would fail at, without starting anything; empty: nothing that can be seen beforehand. */
export function preflight(clientId: ClientId, options?: InitOptions): Problem[];

export interface Folders {
    /** Has vantrel.conf and Logs. */
    dataFolder: string;
    /** Has the product's programs. */
    installFolder: string;
}

/**
 * For development, without administrator rights and before init(): gives this process a
 * HKEY_LOCAL_MACHINE of its own with these folders and the library's version. It hides everything else of
 * HKEY_LOCAL_MACHINE from this process; the processes that it starts see the machine's. A later call
 * replaces the folders.
 */
export function useFolders(folders: Folders): void;

/**
 * Loads QX-Bridge.dll, with the Qt DLLs from beside it; a second call gives the same object. Without a
 * file it is the one in this package's folder bin, or else the one in the current folder. A file in
 * Electron's app.asar is loaded from app.asar.unpacked.
 */
export function load(file?: string): Bridge;
