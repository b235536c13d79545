'use strict';
// Checks, before the start, for causes that make the library's start fail or end the process.

const fs = require('fs');
const path = require('path');
const { VERSION } = require('./bridge.generated');
const product = require('./product');
const windows = require('./windows');

const VALUE = `the registry value HKEY_LOCAL_MACHINE\\${product.KEY} "UserDefinedDir"`;
const BYTE_ORDER_MARK = Buffer.from([0xef, 0xbb, 0xbf]);

function isFolder(file) {
    try {
        return fs.statSync(file).isDirectory();
    } catch (error) {
        return false;
    }
}

// A problem with the data folder itself, or null.
function dataFolderProblem() {
    const folder = product.dataFolder();
    if (folder === '') {
        return {
            what: `${VALUE} is missing`,
            remedy: `install the product, or set it to a data folder (reg add HKLM\\${product.KEY} /v UserDefinedDir /d C:\\Data)`,
        };
    }
    if (isFolder(`${folder}\\`)) return null;
    return { what: `the data folder ${folder} does not exist`, remedy: 'create it, or set the registry value "UserDefinedDir" to another' };
}

// The nearest existing parent. The library creates the folders before the last "\" of a log's path.
function existingFolder(folder) {
    let found = folder;
    while (!isFolder(found) && path.dirname(found) !== found) found = path.dirname(found);
    return found;
}

// 0, or the Windows error with which the library would fail to open this log.
function logError(file) {
    if (fs.existsSync(file)) return windows.appendError(file);
    const folder = path.dirname(path.resolve(file));
    const isMade = !file.slice(file.lastIndexOf('\\') + 1).includes('/');
    return windows.createError(path.join(isMade ? existingFolder(folder) : folder, `qx-bridge-${process.pid}.tmp`));
}

function logProblem(file) {
    const error = logError(file);
    if (error === 0) return null;
    return {
        what: `the log ${file} cannot be opened (Windows error ${error})`,
        remedy: 'give this user the right to write it, or name another log file',
    };
}

function productLogProblem() {
    const folder = `${product.dataFolder()}\\Logs`;
    if (isFolder(folder)) return logProblem(product.logFile());
    return { what: `the folder ${folder} does not exist`, remedy: 'create it: the log is written there' };
}

function startsWithMark(file) {
    const start = Buffer.alloc(BYTE_ORDER_MARK.length);
    const open = fs.openSync(file, 'r');
    try {
        return fs.readSync(open, start, 0, start.length, 0) === start.length && start.equals(BYTE_ORDER_MARK);
    } finally {
        fs.closeSync(open);
    }
}

function confProblem() {
    const file = product.confFile();
    if (!fs.existsSync(file)) {
        return { what: `the configuration file ${file} does not exist`, remedy: 'install the product, or copy a vantrel.conf there' };
    }
    try {
        if (!startsWithMark(file)) return null;
    } catch (error) {
        return { what: `the configuration file ${file} cannot be read`, remedy: 'give this user the right to read it' };
    }
    return { what: `the configuration file ${file} begins with a byte order mark`, remedy: 'save it as UTF-8 without a byte order mark' };
}

function versionProblem() {
    const version = product.version();
    if (version === VERSION) return null;
    return {
        what: `the product's version is "${version}", and the library's is "${VERSION}"`,
        remedy: 'install product and library of the same version',
    };
}

// A list of { what, remedy }, empty when there is no problem. The options are those of init().
function preflight(client, { noConfFile = false, logFile = null } = {}) {
    if (!noConfFile || logFile === null) {
        const problem = dataFolderProblem();
        if (problem !== null) return [problem];
    }
    // With an empty text the library logs to standard output.
    const log = logFile === null ? productLogProblem() : logFile === '' ? null : logProblem(logFile);
    const conf = noConfFile ? null : confProblem();
    const version = client === 'Launcher' ? versionProblem() : null;
    return [log, conf, version].filter((problem) => problem !== null);
}

module.exports = { preflight };
