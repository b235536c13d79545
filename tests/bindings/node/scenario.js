'use strict';
// Plays the steps of a scenario: scenario.js LIBRARY DATA-FOLDER INSTALL-FOLDER STEP... Tabs separate the
// words of a step, which scenarios.txt describes. The registry has no value for an empty data folder.
// QX_SCENARIO_VERSION is the product's version.

const fs = require('fs');
const { removeProduct, setProduct } = require('./registry');
const {
    load, keys, preflight, EVENTS, BridgeError, EventOverflow, KeyError, ListenError, PreflightError, TimeoutError,
} = require('qx-bridge');
const { VERSION } = require('qx-bridge/bridge.generated');
const { findProperty } = require('qx-bridge/keys');

const LIMIT = 30000;
const SHORT_LIMIT = 100;

const [library, data, install, ...steps] = process.argv.slice(2);
if (data !== '') setProduct('UserDefinedDir', data);
else removeProduct('UserDefinedDir');
setProduct('InstallDir', install);
setProduct('Version', process.env.QX_SCENARIO_VERSION || VERSION);

const bridge = load(library);
let events; // streams that begin before "listening" is printed
let few;

const say = (line) => fs.writeSync(1, `${line}\n`);

const METHODS = { bool: 'Bool', i32: 'I32', i64: 'I64', string: 'String', 'multi-string': 'MultiString' };
const shown = (value) => (Array.isArray(value) ? value.join('|') : String(value));
const PARSE = {
    bool: (text) => text === 'true',
    i32: Number,
    i64: BigInt,
    string: (text) => text,
    'multi-string': (text) => (text === '' ? [] : text.split('|')),
};

// A key that the catalogue lacks is read and set as a text.
function typeOf(key) {
    const property = findProperty(key);
    return property === null ? 'string' : property.type;
}

function get(key, type = typeOf(key)) {
    say(`${type} ${shown(bridge.conf[`get${METHODS[type]}`](key))}`);
}

async function sayOutcome(work, last, show) {
    try {
        say(show(await work.finished({ timeout: last === 'short' ? SHORT_LIMIT : LIMIT })));
    } catch (error) {
        if (!(error instanceof TimeoutError)) throw error;
        say('time-out');
    }
}

function valueOf(value) {
    if (typeof value === 'boolean') return value ? '1' : '0';
    return String(value);
}

// Progress is the only number with a fraction.
function sayEvent({ event, ...values }) {
    if ('progress' in values) values.progress = values.progress.toFixed(3);
    say(['event', event, Object.values(values).map(valueOf).join('|')].filter((part) => part !== '').join(' '));
}

async function listen() {
    events = bridge.events(Object.values(EVENTS));
    few = bridge.events(Object.values(EVENTS), { limit: 2 });
    try {
        await bridge.listen({ timeout: LIMIT });
        say('listening');
    } catch (error) {
        if (!(error instanceof ListenError)) throw error;
        say('listen error');
    }
}

async function overflow() {
    for (let i = 0; i < 5; ++i) await events.next();
    try {
        for await (const one of few) sayEvent(one);
    } catch (error) {
        if (!(error instanceof EventOverflow)) throw error;
        say('overflow');
    }
}

const WORDS = {
    preflight(client) {
        const problems = preflight(client);
        for (const { what } of problems) say(`problem ${what}`);
        if (problems.length === 0) say('fine');
    },
    init(client) {
        bridge.init(client);
        say('started');
    },
    get,
    set(key, value, type = typeOf(key)) {
        bridge.conf[`set${METHODS[type]}`](key, PARSE[type](value));
        say('set');
    },
    gettyped() {
        const { conf } = bridge;
        say(`typed ${conf.get(keys.global.enableAdbAccess)} ${conf.get(keys.instance('Nougat64').dpi)}`);
    },
    addinstance(name) {
        bridge.conf.addInstance(name);
        say('added');
    },
    commit() {
        bridge.conf.commit();
        say('committed');
    },
    committofile(file) {
        bridge.conf.commitToFile(file);
        say('committed');
    },
    instances() {
        for (const { instance, displayName, imageName, ram, cpu } of bridge.instances()) {
            say(`instance ${instance} ${displayName} ${imageName} ${ram} ${cpu}`);
        }
    },
    apps(instance) {
        for (const { package: name, appLabel, versionCode } of bridge.apps(instance)) say(`app ${name} ${appLabel} ${versionCode}`);
    },
    listen,
    launch: (instance, name, last) => sayOutcome(bridge.launchApp(instance, name), last,
        (one) => `displayed ${one.instance} ${one.package}`),
    installapk: (instance, file, last) => sayOutcome(bridge.installApk(instance, file), last,
        ({ status }) => `installed ${status}`),
    uninstall: (instance, name, last) => sayOutcome(bridge.uninstallApp(instance, name), last, () => 'uninstalled'),
    installimage: (name, last) => sayOutcome(bridge.installImage(name), last, ({ status }) => `image ${status}`),
    create: (imageName, last) => sayOutcome(bridge.createFreshInstance(
        { imageName, cpu: 2, ram: 2048, graphicEngine: 'aga', graphicRenderer: 'dx', deviceProfile: 's21' }), last,
    ({ status, instance }) => `created ${status} ${instance}`),
    async events(count) {
        for (let i = Number(count); i > 0; --i) sayEvent((await events.next()).value);
    },
    overflow,
    async fini() {
        await bridge.fini();
        say('ended');
    },
};

async function play(step) {
    const [word, ...values] = step.split('\t');
    try {
        await WORDS[word](...values);
    } catch (error) {
        if (error instanceof KeyError) say(`key error ${error.message}`);
        else if (error instanceof PreflightError) say(`preflight ${error.problems.length}`);
        else if (error instanceof BridgeError) say(`error ${error.code} ${error.codeName}`);
        else throw error;
    }
}

async function main() {
    for (const step of steps) await play(step);
    say('finished');
    process.exit(0); // a scenario may end without fini
}

main();
