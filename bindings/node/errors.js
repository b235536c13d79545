'use strict';
// The exceptions of the binding. errors.d.ts documents each class.

const { CODES } = require('./bridge.generated');

const WINDOWS_ERROR = 100000; // added to a Windows error to make a result code

// Name and text of a result code. A code without a table entry has no name.
function describeCode(code) {
    if (code >= WINDOWS_ERROR) return { name: '', text: `Windows error ${code - WINDOWS_ERROR}` };
    return CODES.find((one) => one.number === code) || { name: '', text: `result code ${code}` };
}

class BridgeError extends Error {
    constructor(operation, code, { file = '', log = '' } = {}) {
        const { name, text } = describeCode(code);
        const words = name === '' ? text : `${name}: ${text}`;
        super(`${operation} failed with ${code} (${words})${file && ` for ${file}`}; the log${log && ` ${log}`} has the cause`);
        this.name = 'BridgeError';
        Object.assign(this, { operation, code, codeName: name, text, file, log });
    }
}

class BridgeUsageError extends Error {
    constructor(message) {
        super(message);
        this.name = 'BridgeUsageError';
    }
}

class KeyError extends BridgeUsageError {
    constructor(message, key, suggestion = '') {
        super(message);
        this.name = 'KeyError';
        this.key = key;
        this.suggestion = suggestion;
    }
}

class PreflightError extends Error {
    constructor(problems) {
        super(problems.map(({ what, remedy }) => `${what}: ${remedy}`).join('\n'));
        this.name = 'PreflightError';
        this.problems = problems;
    }
}

class ListenError extends Error {
    constructor(message, processId) {
        super(message);
        this.name = 'ListenError';
        this.processId = processId;
    }
}

class EventOverflow extends Error {
    constructor(limit) {
        super(`more than ${limit} events were waiting to be read`);
        this.name = 'EventOverflow';
        this.limit = limit;
    }
}

// With the name and code of Node's own AbortError.
class AbortError extends Error {
    constructor(reason) {
        super('The operation was aborted');
        this.name = 'AbortError';
        this.code = 'ABORT_ERR';
        this.cause = reason;
    }
}

class TimeoutError extends Error {
    constructor(operation, timeout) {
        super(`${operation} took longer than ${timeout} ms`);
        this.name = 'TimeoutError';
    }
}

module.exports = {
    BridgeError, BridgeUsageError, KeyError, PreflightError, ListenError, EventOverflow, AbortError, TimeoutError,
};
