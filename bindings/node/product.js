'use strict';
// Paths from the product's registry key, the same that the library uses.

const windows = require('./windows');

const KEY = 'SOFTWARE\\Vantrel_nvo';

const value = (name) => windows.registryText(KEY, name);

// Without the value only the separator remains, as in the library.
const dataFile = (name) => `${value('UserDefinedDir') || ''}\\${name}`;

const program = (name) => `${value('InstallDir') || ''}${name}`;

module.exports = {
    KEY,
    dataFolder: () => value('UserDefinedDir') || '',
    version: () => value('Version') || '',
    confFile: () => dataFile('vantrel.conf'),
    logFile: () => dataFile('Logs\\Player.log'),
    player: () => program('QX-Player.exe'),
    manager: () => program('QX-MultiInstanceManager.exe'),
};
