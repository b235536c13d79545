'use strict';
// Events as an async iterator. A full buffer ends the stream with an error, so no event is lost silently.

const { EVENTS } = require('./bridge.generated');
const { abortSignal } = require('./arguments');
const { AbortError, EventOverflow } = require('./errors');

const NAMES = Object.values(EVENTS);

function eventNames(names) {
    const list = Array.isArray(names) ? names : [names];
    for (const name of list) {
        if (!NAMES.includes(name)) throw new TypeError(`there is no event ${JSON.stringify(name)}`);
    }
    return new Set(list);
}

function bufferSize(limit) {
    if (!Number.isSafeInteger(limit) || limit < 1) throw new RangeError('limit must be a positive integer');
    return limit;
}

class EventStream {
    #names;
    #limit;
    #forget;
    #signal;
    #buffer = [];
    #readers = []; // waiting for an event; only while the buffer is empty
    #ended = false;
    #error = null; // thrown once, after the buffered events

    // forget(stream) is called when the stream ends.
    constructor(names, { limit = 10000, signal = null } = {}, forget) {
        this.#names = eventNames(names);
        this.#limit = bufferSize(limit);
        this.#forget = forget;
        this.#signal = abortSignal(signal, 'signal');
        if (this.#signal === null) return;
        if (this.#signal.aborted) throw new AbortError(this.#signal.reason);
        this.#signal.addEventListener('abort', this.#abort);
    }

    [Symbol.asyncIterator]() {
        return this;
    }

    async next() {
        if (this.#buffer.length > 0) return { value: this.#buffer.shift(), done: false };
        if (this.#error !== null) {
            const error = this.#error;
            this.#error = null;
            throw error;
        }
        if (this.#ended) return { value: undefined, done: true };
        return new Promise((resolve, reject) => this.#readers.push({ resolve, reject }));
    }

    async return(value) {
        this.#buffer = [];
        this.end();
        return { value, done: true };
    }

    receive(event, values) {
        if (this.#ended || !this.#names.has(event)) return;
        const value = { event, ...values };
        if (this.#readers.length > 0) this.#readers.shift().resolve({ value, done: false });
        else if (this.#buffer.length < this.#limit) this.#buffer.push(value);
        else this.end(new EventOverflow(this.#limit));
    }

    end(error = null) {
        if (this.#ended) return;
        this.#ended = true;
        this.#error = error;
        if (this.#signal !== null) this.#signal.removeEventListener('abort', this.#abort);
        this.#forget(this);
        // The first waiting reader gets the error, the others the end.
        const readers = this.#readers.splice(0);
        if (error !== null && readers.length > 0) {
            this.#error = null;
            readers.shift().reject(error);
        }
        for (const { resolve } of readers) resolve({ value: undefined, done: true });
    }

    #abort = () => {
        this.#buffer = [];
        this.end(new AbortError(this.#signal.reason));
    };
}

module.exports = { EventStream };
