'use strict';
// Whether the events of a client come to this process: only the first process that listens has the
// client's pipe, and the library says nothing to the others.

const { BridgeUsageError, ListenError } = require('./errors');
const windows = require('./windows');

const PAUSE_MS = 5;

const pause = () => new Promise((resolve) => setTimeout(resolve, PAUSE_MS).unref());

// Waits until this process serves the pipe, whose server begins on a thread of its own. isOver(): nobody
// waits any more.
async function untilServed(client, timeout, isOver) {
    const start = process.hrtime.bigint();
    for (;;) {
        const server = windows.pipeServer(`\\\\.\\pipe\\vtr_${client}_bridge_nvo`);
        if (server === process.pid) return;
        if (server !== null) throw new ListenError(`process ${server} has the events of client "${client}"`, server);
        if (isOver()) throw new BridgeUsageError('fini() came before the library listened');
        if (Number(process.hrtime.bigint() - start) / 1e6 >= timeout) {
            throw new ListenError(`no process has the events of client "${client}" after ${timeout} ms`, 0);
        }
        await pause();
    }
}

module.exports = { untilServed };
