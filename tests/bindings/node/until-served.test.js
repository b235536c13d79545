'use strict';
// Which process serves a client's pipe, with simulated results of Windows.

const assert = require('assert');
const { test } = require('node:test');
const { BridgeUsageError, ListenError } = require('qx-bridge');
const { untilServed } = require('qx-bridge/listening');
const windows = require('qx-bridge/windows');

const OTHER = process.pid + 4;
const never = () => false;

// The processes that serve the pipe, one after another; the last one stays. null: none.
function served(...servers) {
    const asked = [];
    windows.pipeServer = (path) => {
        asked.push(path);
        return servers.length > 1 ? servers.shift() : servers[0];
    };
    return asked;
}

// Keeps the process alive during the pauses.
const alive = setInterval(() => {}, 1000);
test.after(() => clearInterval(alive));

const refused = (processId, message) => ({ constructor: ListenError, processId, message });

test('this process has it', async () => {
    const asked = served(process.pid);
    await untilServed('Helper', 0, never);
    assert.deepStrictEqual(asked, ['\\\\.\\pipe\\vtr_Helper_bridge_nvo']);
});

test('the server\'s thread takes a moment', async () => {
    served(null, null, process.pid);
    await untilServed('Helper', 60000, never);
});

test('another process that leaves does not count', async () => {
    served(OTHER, OTHER, null, process.pid);
    await untilServed('Helper', 60000, never);
});

test('another process that stays has the events', async () => {
    served(OTHER);
    await assert.rejects(untilServed('Helper', 60000, never), refused(OTHER, `process ${OTHER} has the events of client "Helper"`));
    await assert.rejects(untilServed('Helper', 0, never), refused(OTHER, `process ${OTHER} has the events of client "Helper"`));
});

test('no process has it in time', async () => {
    served(null);
    await assert.rejects(untilServed('Helper', 20, never), refused(0, 'no process has the events of client "Helper" after 20 ms'));
});

test('an end of the library ends the wait', async () => {
    served(null);
    let asked = 0;
    await assert.rejects(untilServed('Helper', 60000, () => ++asked === 3), BridgeUsageError);
});
