'use strict';
// The object that a host gets: start and end, events, programs. index.d.ts documents each member.

const { EventEmitter } = require('events');
const { EVENTS } = require('./bridge.generated');
const { text, boolean, i32, milliseconds } = require('./arguments');
const { Configuration } = require('./configuration');
const { BridgeUsageError, PreflightError } = require('./errors');
const { EventStream } = require('./event-stream');
const { KnownValues } = require('./known-values');
const { untilServed } = require('./listening');
const native = require('./native');
const { preflight } = require('./preflight');
const product = require('./product');
const { limited } = require('./waiting');
const { Works, imageInstalled } = require('./work');

// The library reloads its file before it reports these.
const AFTER_A_LOAD = ['instanceListUpdated', 'instanceConfigurationChanged'];

class Bridge extends EventEmitter {
    #call;
    #known = new KnownValues();
    #client = '';
    #pointers = null;
    #listening = null; // the promise of listen(), unless it failed
    #alive = null;
    #pending = [];
    #emitting = false;
    #streams = new Set();
    #works = new Works(() => this.#requireListening());
    #finishing = null;

    constructor(call) {
        super();
        this.#call = call;
        this.conf = new Configuration(this.#call, this.#known);
    }

    init(clientId, options = {}) {
        const client = native.keptText(text(clientId, 'clientId'));
        const { noConfFile = false, logFile = null } = options;
        boolean(noConfFile, 'noConfFile');
        if (logFile !== null) text(logFile, 'logFile');
        this.#call.requireUnfinished();
        const problems = preflight(clientId, { noConfFile, logFile });
        if (problems.length > 0) throw new PreflightError(problems);

        this.#client = clientId;
        this.#known.start(noConfFile ? null : product.confFile());
        if (!noConfFile && logFile === null) {
            this.#call.init('bridgeApiInit', [client], product.logFile());
        } else {
            const log = logFile === null ? product.logFile() : logFile;
            this.#call.init('bridgeApiInitEx', [client, noConfFile, 0, logFile], log);
        }
    }

    listen({ timeout = 10000 } = {}) {
        const limit = milliseconds(timeout, 'timeout');
        if (this.#pointers === null) {
            this.#pointers = native.callbackPointers((name, values) => this.#receive(EVENTS[name], values));
        }
        this.#call.value('bridgeRegisterCallbacks', ...this.#pointers);
        // koffi's callbacks do not keep the event loop running.
        if (this.#alive === null) this.#alive = setInterval(() => {}, 0x7fffffff);
        if (this.#listening === null) this.#listening = this.#untilListening(limit);
        return this.#listening;
    }

    events(names, options) {
        const stream = new EventStream(names, options, (one) => this.#streams.delete(one));
        if (this.#finishing === null) this.#streams.add(stream);
        else stream.end();
        return stream;
    }

    fini() {
        if (this.#finishing === null) {
            this.#pending = [];
            clearInterval(this.#alive);
            // A host that ends before listen() settles does not need its rejection.
            if (this.#listening !== null) this.#listening.catch(() => {});
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
        return JSON.parse(this.instancesJson());
    }
    instancesJson() {
        this.#requireListing();
        return this.#call.text('bridgeConfGetInstances');
    }
    async instancesAsync(options) {
        return JSON.parse(await limited('instancesAsync', options, () => {
            this.#requireListing();
            return this.#call.textLater('bridgeConfGetInstances');
        }));
    }
    apps(instance) {
        return JSON.parse(this.appsJson(instance));
    }
    appsJson(instance) {
        return this.#call.text('bridgeGetInstalledApps', text(instance, 'instance'));
    }
    async appsAsync(instance, options) {
        text(instance, 'instance');
        return JSON.parse(await limited('appsAsync', options,
            () => this.#call.textLater('bridgeGetInstalledApps', instance)));
    }

    launchApp(instance, packageName) {
        const values = [text(instance, 'instance'), text(packageName, 'packageName')];
        return this.#works.start('launchApp', 'appDisplayed',
            (one) => one.instance === instance && one.package === packageName,
            () => this.#call.status('bridgeLaunchApp', values, product.player()));
    }
    launchAppStore(instance, store, packageName) {
        this.#call.status('bridgeLaunchAppStore',
            [text(instance, 'instance'), text(store, 'store'), text(packageName, 'packageName')], product.player());
    }
    launchUrl(instance, url) {
        this.#call.status('bridgeLaunchUrl', [text(instance, 'instance'), text(url, 'url')], product.player());
    }
    installApk(instance, apkFilePath) {
        const values = [text(instance, 'instance'), text(apkFilePath, 'apkFilePath')];
        return this.#works.start('installApk', 'apkInstallCompleted',
            (one) => one.instance === instance && one.apkFilePath === apkFilePath,
            () => this.#call.status('bridgeInstallApk', values, apkFilePath));
    }
    uninstallApp(instance, packageName) {
        const values = [text(instance, 'instance'), text(packageName, 'packageName')];
        return this.#works.start('uninstallApp', 'appUninstalled',
            (one) => one.instance === instance && one.package === packageName,
            () => this.#call.status('bridgeUninstallApp', values, product.player()));
    }
    installImage(imageName, options) {
        return this.#works.start('installImage', 'installImageProgress',
            imageInstalled(text(imageName, 'imageName'), options),
            () => this.#call.status('bridgeInstallImage', [imageName], product.manager()));
    }
    createFreshInstance(wanted) {
        const values = [text(wanted.imageName, 'imageName'),
            String(i32(wanted.cpu, 'cpu')), String(i32(wanted.ram, 'ram')),
            text(wanted.graphicEngine, 'graphicEngine'), text(wanted.graphicRenderer, 'graphicRenderer'),
            text(wanted.deviceProfile, 'deviceProfile')];
        return this.#works.start('createFreshInstance', 'createInstanceCompleted', () => true,
            () => this.#call.status('bridgeCreateFreshInstance', values, product.manager()));
    }

    async shutdownPlayer(instance, flag = false) {
        await this.#call.statusLater('bridgePlrShutdown', [text(instance, 'instance'), boolean(flag, 'flag')]);
    }
    async shutdown() {
        await this.#call.valueLater('bridgeShutdown');
    }

    #requireListing() {
        this.#call.requireReady('bridgeConfGetInstances');
        this.#known.requireListable();
    }

    #requireListening() {
        if (this.#listening === null) throw new BridgeUsageError('call listen() first');
    }

    async #untilListening(timeout) {
        try {
            await untilServed(this.#client, timeout, () => this.#finishing !== null);
        } catch (error) {
            // No event will arrive: do not keep Node running.
            this.#listening = null;
            clearInterval(this.#alive);
            this.#alive = null;
            throw error;
        }
        if (this.#finishing === null) this.#emitSoon('listening');
    }

    // The event thread waits for this function, so no other load can happen meanwhile. The listeners run
    // later: a slow or throwing one does not affect the library.
    #receive(event, values) {
        if (this.#finishing !== null) return;
        if (AFTER_A_LOAD.includes(event)) this.#known.load();
        this.#pending.push([event, values]);
        this.#scheduleEmitting();
    }

    #emitPending() {
        try {
            while (this.#pending.length > 0) {
                const [event, values] = this.#pending.shift();
                for (const stream of [...this.#streams]) stream.receive(event, values);
                this.#works.receive(event, values);
                this.emit(event, values);
            }
        } finally {
            this.#emitting = false;
            if (this.#pending.length > 0) this.#scheduleEmitting();
        }
    }

    #emitClose() {
        for (const stream of [...this.#streams]) stream.end();
        this.#works.end();
        return this.#emitSoon('close');
    }

    // As for events, a listener that throws does not reject the promise.
    #emitSoon(event) {
        return new Promise((resolve) => {
            setImmediate(() => {
                resolve();
                this.emit(event);
            });
        });
    }

    #scheduleEmitting() {
        if (this.#emitting) return;
        this.#emitting = true;
        setImmediate(() => this.#emitPending());
    }
}

module.exports = { Bridge };
