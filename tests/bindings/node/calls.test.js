'use strict';
// Each function of the library is called by the method of its name. Functions that record their calls replace
// the library.

const assert = require('assert');
const fs = require('fs');
const path = require('path');
const { test } = require('node:test');
const { FUNCTIONS } = require('qx-bridge/bridge.generated');

const calls = [];
const VALUES = { bool: true, int32_t: 7, int64_t: 7n };
const ANSWERS = { int32_t: 0, BridgeText: '[]', bool: true, int64_t: 7 };
// By type, since the binding checks keys itself.
const KEY_OF = {
    Bool: 'vtr.enable_adb_access', I32: 'vtr.mem_pcd_pclimit', String: 'vtr.locale', MultiString: 'vtr.shared_folders',
};

const DECLARATIONS = FUNCTIONS.map((declaration) => {
    const [, result, name, list] = /^(\w+) (\w+)\((.*)\)$/.exec(declaration);
    const parameters = list === '' ? [] : list.split(', ').map((one) => /^(.*?)\s*\*?(\w+)$/.exec(one).slice(1));
    return { result, name, parameters };
});

function recorded({ name, result }) {
    const call = (...values) => {
        calls.push([name, ...values]);
        return ANSWERS[result];
    };
    call.async = (...values) => {
        const done = values.pop();
        setImmediate(done, null, call(...values));
    };
    return call;
}

// Replaces the real module, which index.js requires.
const nativeFile = require.resolve('qx-bridge/native.js');
require.cache[nativeFile] = {
    id: nativeFile, filename: nativeFile, loaded: true,
    exports: {
        load: () => Object.fromEntries(DECLARATIONS.map((one) => [one.name, recorded(one)])),
        keptText: (text) => text,
        callbackPointers: () => ['pointer'],
    },
};
const { data } = require('./sandbox'); // it uses index.js
fs.writeFileSync(path.join(data, 'vantrel.conf'), '');
const { load, KeyError, ListenError } = require('qx-bridge');
const bridge = load();
bridge.init('Helper');

// Functions without a method of the same name: a call, and the library's arguments if they differ.
const OTHERS = {
    bridgeApiInit: [() => bridge.init('Launcher'), 'Launcher'],
    bridgeApiInitEx: [() => bridge.init('Launcher', { noConfFile: true, logFile: 'log' }), 'Launcher', true, 0, 'log'],
    bridgeConfGetInstances: [() => bridge.instances()],
    bridgeGetInstalledApps: [(instance) => bridge.apps(instance)],
    bridgePlrShutdown: [(...values) => bridge.shutdownPlayer(...values)],
    bridgeCreateFreshInstance: [(imageName, cpu, ram, graphicEngine, graphicRenderer, deviceProfile) =>
        bridge.createFreshInstance({ imageName, cpu: 7, ram: 8, graphicEngine, graphicRenderer, deviceProfile }),
    'imageName', '7', '8', 'graphicEngine', 'graphicRenderer', 'deviceProfile'],
    // No process serves the pipe, and nothing waits for it.
    bridgeRegisterCallbacks: [() => assert.rejects(bridge.listen({ timeout: 0 }), ListenError), 'pointer'],
};
const WITHOUT = ['bridgeFreeMemory', 'bridgeApiFini', 'bridgeConfGetI64', 'bridgeConfSetI64'];

const lower = (name) => name[0].toLowerCase() + name.slice(1);

// bridgeConfGetBool -> conf.getBool; bridgeLaunchApp -> launchApp
function methodOf(name) {
    if (OTHERS[name]) return OTHERS[name][0];
    const [, conf, rest] = /^bridge(Conf)?(.*)$/.exec(name);
    const target = conf ? bridge.conf : bridge;
    assert.strictEqual(typeof target[lower(rest)], 'function', `${name} has no method ${lower(rest)}`);
    return target[lower(rest)].bind(target);
}

for (const { name, parameters } of DECLARATIONS.filter((one) => !WITHOUT.includes(one.name))) {
    test(name, async () => {
        const values = parameters.map(([type, parameter]) => VALUES[type] ?? parameter);
        const conf = /^bridgeConf(?:Get|Set)(Bool|I32|String|MultiString)$/.exec(name);
        if (conf) values[0] = KEY_OF[conf[1]];
        calls.length = 0;
        await methodOf(name)(...values);
        const others = (OTHERS[name] ?? []).slice(1);
        assert.deepStrictEqual(calls, [[name, ...(others.length > 0 ? others : values)]]);
    });
}

// Methods that call the same function as the method without "Async" or "Json".
const SAME = {
    commitAsync: [() => bridge.conf.commitAsync(), 'bridgeConfCommit'],
    commitToFileAsync: [() => bridge.conf.commitToFileAsync('path'), 'bridgeConfCommitToFile', 'path'],
    instancesJson: [() => bridge.instancesJson(), 'bridgeConfGetInstances'],
    instancesAsync: [() => bridge.instancesAsync(), 'bridgeConfGetInstances'],
    appsJson: [() => bridge.appsJson('N'), 'bridgeGetInstalledApps', 'N'],
    appsAsync: [() => bridge.appsAsync('N'), 'bridgeGetInstalledApps', 'N'],
};
for (const [name, [call, ...expected]] of Object.entries(SAME)) {
    test(name, async () => {
        calls.length = 0;
        await call();
        assert.deepStrictEqual(calls, [expected]);
    });
}

test('the functions of a type that no key has call nothing', () => {
    calls.length = 0;
    assert.throws(() => bridge.conf.getI64('vtr.locale'), KeyError);
    assert.throws(() => bridge.conf.setI64('vtr.locale', 1n), KeyError);
    assert.deepStrictEqual(calls, []);
});

test('each method is among the types', () => {
    const types = fs.readFileSync(path.join(path.dirname(nativeFile), 'index.d.ts'), 'utf8');
    const names = (target) => Object.getOwnPropertyNames(Object.getPrototypeOf(target)).filter((one) => one !== 'constructor');
    for (const name of [...names(bridge), ...names(bridge.conf)]) {
        assert.match(types, new RegExp(`^    ${name}[(<]`, 'm'), name);
    }
});

test('the end, after which nothing is called', async () => {
    calls.length = 0;
    await bridge.fini();
    assert.deepStrictEqual(calls, [['bridgeApiFini']]);
    assert.throws(() => bridge.instances(), /after fini\(\)/);
});
