'use strict';
// A small launcher: a page on the loopback address that lists instances and their apps, launches apps,
// stops players, changes a few settings, and shows events as they arrive.
//     node server.js [PATH-OF-QX-Bridge.dll [DATA-FOLDER INSTALL-FOLDER]]
// The two folders replace those of the registry, so that it needs neither the product nor administrator
// rights. The printed address contains a token that other users cannot guess.

const crypto = require('crypto');
const fs = require('fs');
const http = require('http');
const path = require('path');
const { load, useFolders, keys, EVENTS } = require('qx-bridge');

const [library, dataFolder, installFolder] = process.argv.slice(2);
if (dataFolder !== undefined) useFolders({ dataFolder, installFolder });
const bridge = load(library);
const token = crypto.randomBytes(16).toString('hex');
const page = fs.readFileSync(path.join(__dirname, 'page.html'));
const listeners = new Set();  // responses of pages that show events

// The settings that the page offers.
const globalSettings = () => [keys.global.locale, keys.global.enableAdbAccess];
const instanceSettings = (name) => {
    const own = keys.instance(name);
    return [own.displayName, own.dpi, own.maxFps];
};

const shown = (key) => ({ key: key.text, type: key.type, unit: key.unit, value: bridge.conf.get(key) });

async function state() {
    const instances = await bridge.instancesAsync();
    return {
        settings: globalSettings().map(shown),
        instances: await Promise.all(instances.map(async (one) => ({
            name: one.instance,
            displayName: one.displayName,
            settings: instanceSettings(one.instance).map(shown),
            apps: (await bridge.appsAsync(one.instance)).map(({ package: id, appLabel }) => ({ id, appLabel })),
        }))),
    };
}

// Reads only files that the listing names.
async function icon({ instance, app }) {
    const found = (await bridge.appsAsync(instance)).find((one) => one.package === app);
    return found === undefined ? null : fs.promises.readFile(found.iconFilePath).catch(() => null);
}

async function change({ key, value }) {
    const known = (await bridge.instancesAsync()).flatMap((one) => instanceSettings(one.instance));
    const setting = [...globalSettings(), ...known].find((one) => one.text === key);
    if (setting === undefined) throw new Error(`${key} is not offered`);
    bridge.conf.set(setting, value);
    await bridge.conf.commitAsync();
}

const commands = {
    launch: ({ instance, app }) => { bridge.launchApp(instance, app); },
    stop: ({ instance }) => bridge.shutdownPlayer(instance),
    change,
};

function send(response, status, type, body) {
    response.writeHead(status, {
        'content-type': type,
        'cache-control': 'no-store',
        'x-content-type-options': 'nosniff',
        // Allow only the page's own script and styles.
        'content-security-policy': "default-src 'none'; script-src 'unsafe-inline'; style-src 'unsafe-inline'; img-src 'self'; connect-src 'self'",
    });
    response.end(body);
}

const sendJson = (response, status, value) => send(response, status, 'application/json', JSON.stringify(value));

async function bodyOf(request) {
    let text = '';
    for await (const piece of request.setEncoding('utf8')) {
        text += piece;
        if (text.length > 100000) throw new Error('the request is too long');
    }
    return JSON.parse(text);
}

function showEvents(request, response) {
    response.writeHead(200, { 'content-type': 'text/event-stream', 'cache-control': 'no-store' });
    response.write(':\n\n');
    listeners.add(response);
    request.on('close', () => listeners.delete(response));
}

async function answer(request, response) {
    const url = new URL(request.url, 'http://127.0.0.1');
    const [, given, name] = url.pathname.split('/');
    // Another site's page can send requests here, but it lacks the token, and its Host header differs.
    if (given !== token || request.headers.host !== `127.0.0.1:${server.address().port}`) {
        return send(response, 404, 'text/plain', 'Not found\n');
    }
    if (request.method === 'POST' && Object.hasOwn(commands, name)) {
        await commands[name](await bodyOf(request));
        return sendJson(response, 200, {});
    }
    if (name === '') return send(response, 200, 'text/html; charset=utf-8', page);
    if (name === 'state') return sendJson(response, 200, await state());
    if (name === 'events') return showEvents(request, response);
    if (name === 'icon') {
        const image = await icon(Object.fromEntries(url.searchParams));
        if (image !== null) return send(response, 200, 'image/png', image);
    }
    return send(response, 404, 'text/plain', 'Not found\n');
}

const server = http.createServer((request, response) => {
    answer(request, response).catch((error) => sendJson(response, 400, { error: error.message }));
});

async function main() {
    bridge.init('Helper');
    for (const event of Object.values(EVENTS)) {
        bridge.on(event, (values) => {
            const data = JSON.stringify({ event, ...values });
            for (const one of listeners) one.write(`data: ${data}\n\n`);
        });
    }
    await bridge.listen();
    server.listen(0, '127.0.0.1', () => console.log(`http://127.0.0.1:${server.address().port}/${token}/`));
}

main().catch((error) => {
    console.error(error.message);
    process.exitCode = 1;
    bridge.fini();
});
