'use strict';
// Calls the library when its state allows it, and turns results into values and errors.

const { RESULT } = require('./bridge.generated');
const { BridgeError, BridgeUsageError } = require('./errors');

class Calls {
    #functions;
    #state = 'new';
    #log = ''; // path of the library's log
    #running = new Set();

    constructor(functions) {
        this.#functions = functions;
    }

    get started() {
        return this.#state !== 'new';
    }

    requireUnfinished() {
        if (this.#state === 'finished') throw new BridgeUsageError('the library has ended; it starts once per process');
    }

    requireReady(operation) {
        if (this.#state === 'ready') return;
        throw new BridgeUsageError(`${operation}: ${this.#state === 'new' ? 'call init() first' : 'called after fini()'}`);
    }

    init(operation, values, log) {
        this.#log = log;
        this.#requireSuccess(operation, this.#functions[operation](...values));
        this.#state = 'ready';
    }

    value(operation, ...values) {
        this.requireReady(operation);
        return this.#functions[operation](...values);
    }

    text(operation, ...values) {
        return this.#requireText(operation, this.value(operation, ...values));
    }

    // `file` is the file that the call works on, for the error.
    status(operation, values, file) {
        this.#requireSuccess(operation, this.value(operation, ...values), file);
    }

    // The same three on a libuv thread.
    async valueLater(operation, ...values) {
        this.requireReady(operation);
        return this.#start(operation, values);
    }

    async textLater(operation, ...values) {
        return this.#requireText(operation, await this.valueLater(operation, ...values));
    }

    async statusLater(operation, values, file) {
        this.#requireSuccess(operation, await this.valueLater(operation, ...values), file);
    }

    // Waits for running calls first, because none may run during bridgeApiFini. That runs on another thread:
    // it waits for the event thread, which may be waiting for this one.
    async finish() {
        const wasReady = this.#state === 'ready';
        this.#state = 'finished';
        await Promise.allSettled(this.#running);
        if (wasReady) await this.#start('bridgeApiFini', []);
    }

    #requireSuccess(operation, code, file) {
        if (code !== RESULT.SUCCESS) throw new BridgeError(operation, code, { file, log: this.#log });
    }

    #requireText(operation, answer) {
        if (answer === null) throw new BridgeError(operation, RESULT.FAILURE, { log: this.#log });
        return answer;
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

module.exports = { Calls };
