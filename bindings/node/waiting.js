'use strict';
// Limits of a wait: the promise settles early, the work goes on.

const { abortSignal, milliseconds } = require('./arguments');
const { AbortError, TimeoutError } = require('./errors');

const LONGEST_TIMER = 0x7fffffff;

// Settles like the promise that start() returns, or earlier with an AbortError or TimeoutError. A signal that
// is already aborted starts nothing.
async function limited(operation, options, start) {
    const { signal: givenSignal, timeout: givenTimeout } = options || {};
    const signal = abortSignal(givenSignal, 'signal');
    const timeout = milliseconds(givenTimeout, 'timeout');
    if (signal !== null && signal.aborted) throw new AbortError(signal.reason);
    const outcome = start();
    return new Promise((resolve, reject) => {
        let timer = null;
        const stop = () => {
            clearTimeout(timer);
            if (signal !== null) signal.removeEventListener('abort', abort);
        };
        const abort = () => {
            stop();
            reject(new AbortError(signal.reason));
        };
        const expire = () => {
            stop();
            reject(new TimeoutError(operation, timeout));
        };
        if (signal !== null) signal.addEventListener('abort', abort);
        if (timeout !== Infinity) timer = setTimeout(expire, Math.min(timeout, LONGEST_TIMER));
        outcome.finally(stop).then(resolve, reject);
    });
}

module.exports = { limited };
