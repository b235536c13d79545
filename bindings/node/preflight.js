'use strict';
// What the library's start would refuse or not survive, looked at first.

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

// The data folder itself.
function dataFolderProblem() {
    const folder = product.dataFolder();
    if (folder === '') {
        return {
            what: `${VALUE} is missing`,
            remedy: `install the product, or set it to a data folder (reg add HKLM\\${product.KEY} /v UserDefinedDir /d FOLDER)`,
        };
    }
    if (!isFolder(`${folder}\\`)) {
        return { what: `the data folder ${folder} does not exist`, remedy: `install the product, or make the folder and its folder Logs` };
    }
    return null;
}

// The library makes the folders of a log as far as "\" separates them.
function existingFolder(folder) {
    let found = folder;
    while (!isFolder(found) && path.dirname(found) !== found) found = path.dirname(found);
    return found;
}

function canStartLog(file) {
    if (fs.existsSync(file)) return windows.canAppend(file);
    const full = path.resolve(file);
    const isMade = !file.slice(file.lastIndexOf('\\') + 1).includes('/');
    const folder = isMade ? existingFolder(path.dirname(full)) : path.dirname(full);
    return windows.canCreate(path.join(folder, `qx-bridge-${process.pid}.tmp`));
}

function logProblem(file) {
    if (canStartLog(file)) return null;
    return { what: `the log ${file} cannot be opened`, remedy: 'let this user write it, and see that nothing else is in its place' };
}

function productLogProblem() {
    const folder = `${product.dataFolder()}\\Logs`;
    if (isFolder(folder)) return logProblem(product.logFile());
    return { what: `the folder ${folder} does not exist`, remedy: 'make it' };
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
        return { what: `the configuration file ${file} does not exist`, remedy: 'install the product, or start with noConfFile' };
    }
    try {
        if (!startsWithMark(file)) return null;
    } catch (error) {
        return { what: `the configuration file ${file} cannot be read`, remedy: 'let this user read it' };
    }
    return { what: `the configuration file ${file} begins with a byte order mark`, remedy: 'save it as UTF-8 without one' };
}

function versionProblem() {
    const version = product.version();
    if (version === VERSION) return null;
    return {
        what: version === '' ? 'the product\'s version is not in the registry' : `the product has version ${version}, and the library ${VERSION}`,
        remedy: `install version ${VERSION} of the product`,
    };
}

// A list of { what, remedy }, empty when nothing is in the way. The options are those of init().
function preflight(client, { noConfFile = false, logFile = null } = {}) {
    if (!noConfFile || logFile === null) {
        const problem = dataFolderProblem();
        if (problem !== null) return [problem];
    }
    // An empty text leaves the log on standard output.
    const log = logFile === null ? productLogProblem() : logFile === '' ? null : logProblem(logFile);
    const conf = noConfFile ? null : confProblem();
    const version = client === 'Launcher' ? versionProblem() : null;
    return [log, conf, version].filter((problem) => problem !== null);
}

module.exports = { preflight };
