'use strict';
// Reads a configuration file as the library does.

const fs = require('fs');
const { splitKey, findProperty } = require('./keys');

const LINE_SIZE = 4096;

const decoded = (bytes) => Buffer.from(bytes, 'latin1').toString('utf8');

// Key and value of a line, whose characters are bytes; null for a line at which a load stops. The value is
// between the first and the last byte after the "=".
function entryOf(line) {
    const equals = line.indexOf('=');
    if (equals < 0 || equals + 1 === line.length || line.length > LINE_SIZE) return null;
    const value = line.slice(equals + 2, -1);
    const end = value.indexOf('\0');
    return { key: decoded(line.slice(0, equals)), value: decoded(end < 0 ? value : value.slice(0, end)) };
}

function linesOf(content) {
    const lines = content.split('\n');
    if (lines[lines.length - 1] === '') lines.pop();
    return lines;
}

// A file that does not exist or cannot be read counts as empty.
function contentOf(file) {
    try {
        return fs.readFileSync(file, 'latin1');
    } catch (error) {
        return '';
    }
}

// The names of all instances in the file, and the values by key up to the line at which a load stops.
function readConfFile(file) {
    const instances = new Set();
    const values = new Map();
    let isLoading = true;
    for (const line of linesOf(contentOf(file))) {
        const entry = entryOf(line);
        const parts = entry && splitKey(entry.key);
        if (parts && parts.scope === 'instance') instances.add(parts.instance);
        isLoading = isLoading && entry !== null && findProperty(entry.key) !== null;
        if (isLoading) values.set(entry.key, entry.value);
    }
    return { instances, values };
}

module.exports = { readConfFile };
