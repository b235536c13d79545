'use strict';
// Finds out whether this process receives a client's events. Only the first process that listens has the
// client's pipe; the library does not report that to the others.

const { BridgeUsageError, ListenError } = require('./errors');
const windows = require('./windows');

const PAUSE_MS = 5;

// Time that another process gets to release the pipe, because it may be ending. The library itself looks for
// another server on its own thread, a moment after the first check here.
const LEAVING_MS = 500;

const pause = () => new Promise((resolve) => setTimeout(resolve, PAUSE_MS).unref());

function stopwatch() {
    const start = process.hrtime.bigint();
    return () => Number(process.hrtime.bigint() - start) / 1e6;
}

// Waits until this process serves the pipe. isOver() ends the wait.
async function untilServed(client, timeout, isOver) {
    const elapsed = stopwatch();
    for (;;) {
        const server = windows.pipeServer(`\\\\.\\pipe\\vtr_${client}_bridge_nvo`);
        if (server === process.pid) return;
        if (isOver()) throw new BridgeUsageError('fini() was called before the library listened');
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
