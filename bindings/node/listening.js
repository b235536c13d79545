'use strict';
// Whether the events of a client come to this process: only the first process that listens has the
// client's pipe, and the library says nothing to the others.

const { BridgeUsageError, ListenError } = require('./errors');
const windows = require('./windows');

const PAUSE_MS = 5;

// The library looks for another process a moment after the first look here, on a thread of its own: one
// that is just ending may have left the pipe by then.
const LEAVING_MS = 500;

const pause = () => new Promise((resolve) => setTimeout(resolve, PAUSE_MS).unref());

function stopwatch() {
    const start = process.hrtime.bigint();
    return () => Number(process.hrtime.bigint() - start) / 1e6;
}

// Waits until this process serves the pipe. isOver(): nobody waits any more.
async function untilServed(client, timeout, isOver) {
    const elapsed = stopwatch();
    for (;;) {
        const server = windows.pipeServer(`\\\\.\\pipe\\vtr_${client}_bridge_nvo`);
        if (server === process.pid) return;
        if (isOver()) throw new BridgeUsageError('fini() came before the library listened');
        if (server !== null && elapsed() >= Math.min(timeout, LEAVING_MS)) {
            throw new ListenError(`process ${server} has the events of client "${client}"`, server);
        }
        if (server === null && elapsed() >= timeout) {
            throw new ListenError(`no process has the events of client "${client}" after ${timeout} ms`, 0);
        }
        await pause();
    }
}

module.exports = { untilServed };
