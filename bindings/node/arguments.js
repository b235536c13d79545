'use strict';
// Checks arguments. koffi would silently cut a text at a NUL, accept null and wrap numbers.

function text(value, name) {
    if (typeof value !== 'string') throw new TypeError(`${name} must be a string`);
    if (value.includes('\0')) throw new TypeError(`${name} must not contain NUL`);
    return value;
}

function boolean(value, name) {
    if (typeof value !== 'boolean') throw new TypeError(`${name} must be a boolean`);
    return value;
}

function i32(value, name) {
    if (typeof value !== 'number' || (value | 0) !== value) {
        throw new RangeError(`${name} must be a 32-bit integer`);
    }
    return value;
}

function i64(value, name) {
    if (typeof value !== 'bigint' && !Number.isSafeInteger(value)) {
        throw new RangeError(`${name} must be a bigint or a safe integer`);
    }
    const wide = BigInt(value);
    if (BigInt.asIntN(64, wide) !== wide) throw new RangeError(`${name} must be a 64-bit integer`);
    return wide;
}

function multiString(value, name) {
    if (typeof value === 'string') return text(value, name);
    if (!Array.isArray(value)) throw new TypeError(`${name} must be a string or an array of strings`);
    return value
        .map((element) => {
            if (text(element, name).includes(',')) throw new TypeError(`${name}: an element must not contain ","`);
            return element;
        })
        .join(',');
}

// Null and undefined mean no function.
function optionalFunction(value, name) {
    if (value !== undefined && value !== null && typeof value !== 'function') {
        throw new TypeError(`${name} must be a function`);
    }
    return value || null;
}

// Null and undefined mean no limit.
function milliseconds(value, name) {
    if (value === undefined || value === null) return Infinity;
    if (typeof value !== 'number' || !(value >= 0)) throw new RangeError(`${name} must be a number of milliseconds`);
    return value;
}

function abortSignal(value, name) {
    if (value === undefined || value === null) return null;
    if (typeof value.aborted !== 'boolean' || typeof value.addEventListener !== 'function') {
        throw new TypeError(`${name} must be an AbortSignal`);
    }
    return value;
}

module.exports = { text, boolean, i32, i64, multiString, optionalFunction, milliseconds, abortSignal };
