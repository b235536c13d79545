'use strict';
// QX-Bridge.dll for Node.js and Electron. index.d.ts says what each member does.

const { EventEmitter } = require('events');
const { RESULT, EVENTS } = require('./bridge.generated');
const native = require('./native');

const CLIENTS = Object.freeze(['Launcher', 'Installer', 'LogCollector', 'Helper', 'Uninstaller']);

class BridgeError extends Error {
    constructor(operation, code) {
        super(`${operation} failed with ${code}; the log has the cause`);
        this.name = 'BridgeError';
        this.operation = operation;
        this.code = code;
    }
}

// koffi would cut a text at a NUL, let null through and wrap numbers silently.
function text(value, name) {
    if (typeof value !== 'string') throw new TypeError(`${name} must be a string`);
    if (value.includes('\0')) throw new TypeError(`${name} must not contain NUL`);
    return value;
}

function boolean(value, name) {
    if (typeof value !== 'boolean') throw new TypeError(`${name} must be a boolean`);
    return value;
}

function i32(value, name) {
    if (typeof value !== 'number' || (value | 0) !== value) {
        throw new RangeError(`${name} must be a 32-bit integer`);
    }
    return value;
}

function i64(value, name) {
    if (typeof value !== 'bigint' && !Number.isSafeInteger(value)) {
        throw new RangeError(`${name} must be a bigint or a safe integer`);
    }
    const wide = BigInt(value);
    if (BigInt.asIntN(64, wide) !== wide) throw new RangeError(`${name} must be a 64-bit integer`);
    return wide;
}

function multiString(value, name) {
    if (typeof value === 'string') return text(value, name);
    if (!Array.isArray(value)) throw new TypeError(`${name} must be a string or an array of strings`);
    return value
        .map((element) => {
            if (text(element, name).includes(',')) throw new TypeError(`${name}: an element must not contain ","`);
            return element;
        })
        .join(',');
}

class Configuration {
    #call;

    constructor(call) {
        this.#call = call;
    }

    getBool(key) {
        return this.#call.value('bridgeConfGetBool', text(key, 'key'));
    }
    getI32(key) {
        return this.#call.value('bridgeConfGetI32', text(key, 'key'));
    }
    getI64(key) {
        return BigInt(this.#call.value('bridgeConfGetI64', text(key, 'key')));
    }
    getString(key) {
        return this.#call.text('bridgeConfGetString', text(key, 'key'));
    }
    getMultiString(key) {
        const stored = this.#call.text('bridgeConfGetMultiString', text(key, 'key'));
        return stored === '' ? [] : stored.split(',');
    }
    setBool(key, value) {
        this.#call.status('bridgeConfSetBool', text(key, 'key'), boolean(value, 'value'));
    }
    setI32(key, value) {
        this.#call.status('bridgeConfSetI32', text(key, 'key'), i32(value, 'value'));
    }
    setI64(key, value) {
        this.#call.status('bridgeConfSetI64', text(key, 'key'), i64(value, 'value'));
    }
    setString(key, value) {
        this.#call.status('bridgeConfSetString', text(key, 'key'), text(value, 'value'));
    }
    setMultiString(key, value) {
        this.#call.status('bridgeConfSetMultiString', text(key, 'key'), multiString(value, 'value'));
    }
    commit() {
        this.#call.status('bridgeConfCommit');
    }
    commitToFile(path) {
        this.#call.status('bridgeConfCommitToFile', text(path, 'path'));
    }
}

// Calls that are allowed now, with what they answer turned into values and errors.
class Calls {
    #functions;
    #state = 'new';
    #running = new Set();

    constructor(functions) {
        this.#functions = functions;
    }

    init(operation, ...values) {
        if (this.#state === 'finished') throw new Error('the library was finished; it starts once per process');
        const code = this.#functions[operation](...values);
        if (code !== RESULT.SUCCESS) throw new BridgeError(operation, code);
        this.#state = 'ready';
    }

    value(operation, ...values) {
        this.#check(operation);
        return this.#functions[operation](...values);
    }

    status(operation, ...values) {
        const code = this.value(operation, ...values);
        if (code !== RESULT.SUCCESS) throw new BridgeError(operation, code);
    }

    text(operation, ...values) {
        const answer = this.value(operation, ...values);
        if (answer === null) throw new BridgeError(operation, RESULT.FAILURE);
        return answer;
    }

    // The same on a thread of libuv's.
    background(operation, ...values) {
        this.#check(operation);
        return this.#start(operation, values);
    }

    // Waits for the calls that run: none may run while the library finishes. Not on this thread
    // either: the event thread may be waiting for it, and the library waits for the event thread.
    async finish() {
        const wasReady = this.#state === 'ready';
        this.#state = 'finished';
        await Promise.allSettled(this.#running);
        if (wasReady) await this.#start('bridgeApiFini', []);
    }

    #check(operation) {
        if (this.#state === 'ready') return;
        throw new Error(`${operation}: ${this.#state === 'new' ? 'init() comes first' : 'after fini()'}`);
    }

    #start(operation, values) {
        const call = new Promise((resolve, reject) => {
            this.#functions[operation].async(...values, (error, answer) => {
                this.#running.delete(call);
                if (error) reject(error);
                else resolve(answer);
            });
        });
        this.#running.add(call);
        return call;
    }
}

class Bridge extends EventEmitter {
    #call;
    #pointers = null;
    #pending = [];
    #emitting = false;
    #finishing = null;
    #alive = null;

    constructor(functions) {
        super();
        this.#call = new Calls(functions);
        this.conf = new Configuration(this.#call);
    }

    init(clientId, options = {}) {
        const client = native.keptText(text(clientId, 'clientId'));
        const { noConfFile = false, logFile = null } = options;
        if (!noConfFile && logFile === null) {
            this.#call.init('bridgeApiInit', client);
        } else {
            const log = logFile === null ? null : text(logFile, 'logFile');
            this.#call.init('bridgeApiInitEx', client, boolean(noConfFile, 'noConfFile'), 0, log);
        }
    }

    listen() {
        if (this.#pointers === null) {
            this.#pointers = native.callbackPointers((name, values) => this.#receive(EVENTS[name], values));
        }
        this.#call.value('bridgeRegisterCallbacks', ...this.#pointers);
        // koffi's callbacks do not keep the event loop running.
        if (this.#alive === null) this.#alive = setInterval(() => {}, 0x7fffffff);
    }

    fini() {
        if (this.#finishing === null) {
            this.#pending = [];
            clearInterval(this.#alive);
            this.#finishing = this.#call.finish().finally(() => this.#emitClose());
        }
        return this.#finishing;
    }

    ref() {
        if (this.#alive !== null) this.#alive.ref();
        return this;
    }
    unref() {
        if (this.#alive !== null) this.#alive.unref();
        return this;
    }

    instances() {
        return JSON.parse(this.#call.text('bridgeConfGetInstances'));
    }
    apps(instance) {
        return JSON.parse(this.#call.text('bridgeGetInstalledApps', text(instance, 'instance')));
    }

    launchApp(instance, packageName) {
        this.#call.status('bridgeLaunchApp', text(instance, 'instance'), text(packageName, 'packageName'));
    }
    launchAppStore(instance, store, packageName) {
        this.#call.status('bridgeLaunchAppStore', text(instance, 'instance'), text(store, 'store'),
            text(packageName, 'packageName'));
    }
    launchUrl(instance, url) {
        this.#call.status('bridgeLaunchUrl', text(instance, 'instance'), text(url, 'url'));
    }
    installApk(instance, apkFilePath) {
        this.#call.status('bridgeInstallApk', text(instance, 'instance'), text(apkFilePath, 'apkFilePath'));
    }
    uninstallApp(instance, packageName) {
        this.#call.status('bridgeUninstallApp', text(instance, 'instance'), text(packageName, 'packageName'));
    }
    installImage(imageName) {
        this.#call.status('bridgeInstallImage', text(imageName, 'imageName'));
    }
    createFreshInstance(wanted) {
        this.#call.status('bridgeCreateFreshInstance', text(wanted.imageName, 'imageName'),
            String(i32(wanted.cpu, 'cpu')), String(i32(wanted.ram, 'ram')),
            text(wanted.graphicEngine, 'graphicEngine'), text(wanted.graphicRenderer, 'graphicRenderer'),
            text(wanted.deviceProfile, 'deviceProfile'));
    }

    async shutdownPlayer(instance, flag = false) {
        const code = await this.#call.background('bridgePlrShutdown', text(instance, 'instance'), boolean(flag, 'flag'));
        if (code !== RESULT.SUCCESS) throw new BridgeError('bridgePlrShutdown', code);
    }
    async shutdown() {
        await this.#call.background('bridgeShutdown');
    }

    // The event thread waits for this: the listeners run afterwards, so that one that takes long or
    // throws is the host's affair alone.
    #receive(event, values) {
        if (this.#finishing !== null) return;
        this.#pending.push([event, values]);
        this.#scheduleEmitting();
    }

    #emitPending() {
        try {
            while (this.#pending.length > 0) {
                const [event, values] = this.#pending.shift();
                this.emit(event, values);
            }
        } finally {
            this.#emitting = false;
            if (this.#pending.length > 0) this.#scheduleEmitting();
        }
    }

    // Like the events: a listener that throws does not fail the promise.
    #emitClose() {
        return new Promise((resolve) => {
            setImmediate(() => {
                resolve();
                this.emit('close');
            });
        });
    }

    #scheduleEmitting() {
        if (this.#emitting) return;
        this.#emitting = true;
        setImmediate(() => this.#emitPending());
    }
}

let loaded = null;

function load(file = 'QX-Bridge.dll') {
    if (loaded === null) loaded = { file, bridge: new Bridge(native.load(file)) };
    if (loaded.file !== file) throw new Error(`${loaded.file} is loaded already`);
    return loaded.bridge;
}

module.exports = { load, BridgeError, CLIENTS, RESULT, EVENTS };
