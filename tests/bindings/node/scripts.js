'use strict';
// Hosts for tests of how a process ends: scripts.js NAME [ARGUMENT].

const { spawn } = require('child_process');
const { on } = require('events');
const fs = require('fs');
const path = require('path');
const host = require('./host');
const native = require('qx-bridge/native');

const say = (...words) => console.log(...words);

const SCRIPTS = {
    // A launched stand-in reports the app, and is asked to shut down.
    launch() {
        host.setProduct('InstallDir', `${host.standins}\\`);
        const bridge = host.start();
        bridge.on('appDisplayed', async ({ instance, package: name }) => {
            say('displayed', instance, name);
            // Both at once: the end waits for the call.
            await Promise.all([bridge.shutdownPlayer(instance, true), bridge.fini()]);
            say('finished');
        });
        bridge.listen(host.PATIENT);
        host.served().then(() => bridge.launchApp('NodeTest', 'com.größe'));
    },

    // Two iterations over events end with the library. One of them gets no event.
    async iterate() {
        const bridge = host.start();
        bridge.once('close', () => say('closed'));
        bridge.listen(host.PATIENT);
        async function displayed() {
            for await (const [{ package: name }] of on(bridge, 'appDisplayed', { close: ['close'] })) {
                say('displayed', name);
                bridge.fini();
            }
            say('no more displayed');
        }
        async function uninstalled() {
            for await (const _ of on(bridge, 'appUninstalled', { close: ['close'] })) say('uninstalled');
            say('no more uninstalled');
        }
        const both = Promise.all([displayed(), uninstalled()]);
        await host.send('app-displayed', 'N', 'p');
        await both;
        say('finished');
    },

    // The end during many events, while the event loop is blocked.
    finish() {
        process.env.QX_STANDIN_SCRIPT = host.write('flood.script', 'event-flood 20000 app-displayed N p{n}\n');
        const bridge = host.start();
        let count = 0;
        let ended = false;
        let flood;
        bridge.on('appDisplayed', async () => {
            if (ended) say('an event after the end');
            if (++count !== 100) return;
            ended = true;
            // By now the event thread waits for this thread.
            Atomics.wait(new Int32Array(new SharedArrayBuffer(4)), 0, 0, 200);
            await bridge.fini();
            setImmediate(() => say('finished, silent since'));
            flood.kill();
        });
        bridge.listen(host.PATIENT);
        host.served().then(() => {
            flood = spawn(path.join(host.standins, 'QX-Player.exe'), ['--instance', 'NodeFlood'], { stdio: 'ignore' });
        });
    },

    // A listener that throws, and the event after it.
    throws() {
        const bridge = host.start();
        process.on('uncaughtException', (error) => say('uncaught:', error.message));
        bridge.on('appDisplayed', async ({ package: name }) => {
            if (name !== 'q') return;
            say('next', name);
            await bridge.fini();
            say('finished');
        });
        bridge.on('appDisplayed', ({ package: name }) => {
            if (name === 'p') throw new Error('of the listener');
        });
        bridge.listen(host.PATIENT);
        host.send('app-displayed', 'N', 'p').then(() => host.send('app-displayed', 'N', 'q'));
    },

    noFile() {
        const logFile = path.join(host.data, 'own ü.log');
        const bridge = host.start('vtr.instance.Nougat64.dpi="240"\n', { noConfFile: true, logFile });
        say(JSON.stringify(bridge.instances()));
        bridge.fini().then(() => {
            if (fs.readFileSync(logFile, 'utf8').includes('Launcher_bridge')) say('logged');
        });
    },

    unref() {
        const bridge = host.start();
        bridge.listen(host.PATIENT).then(() => bridge.unref());
        process.on('exit', () => say('no reason to stay'));
    },

    // Listens and ends at once, and handles neither promise's rejection.
    hasty() {
        const bridge = host.start();
        bridge.listen(host.PATIENT);
        bridge.fini().then(() => say('finished'));
    },

    // A second process of a client, which handles the refusal or, with "ignore", does not. It calls fini()
    // before it ends, because under Wine the end must not interrupt a thread that is starting.
    second(how) {
        const bridge = host.start();
        const listening = bridge.listen(host.PATIENT);
        bridge.on('listening', () => say('listening'));
        const isAlive = () => process.getActiveResourcesInfo().includes('Timeout');
        const tell = (name) => (error) => {
            say(`${name}: ${error.name} ${error.processId}: ${error.message}`);
            say(isAlive() ? 'waits for events' : 'no reason to stay');
            return bridge.fini();
        };
        if (how === 'ignore') process.on('unhandledRejection', tell('unhandled'));
        else listening.catch(tell('refused'));
    },

    // A programming error that reaches the library past the binding's checks ends the process.
    fatal(call) {
        host.write('vantrel.conf', '');
        const library = native.load(host.dll);
        library.bridgeApiInit(native.keptText(host.CLIENT));
        const calls = {
            missing: () => library.bridgeConfGetString('vtr.no_such_key'),
            otherType: () => library.bridgeConfGetI32('vtr.locale'),
            getI64: () => library.bridgeConfGetI64('vtr.locale'),
            setI64: () => library.bridgeConfSetI64('vtr.locale', 1n << 40n),
        };
        calls[call]();
        say('still here');
    },
};

const [name, ...words] = process.argv.slice(2);
SCRIPTS[name](...words);
