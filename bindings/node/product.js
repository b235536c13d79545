'use strict';
// Where the product's registry key says that things are: the same places that the library goes to.

const windows = require('./windows');

const KEY = 'SOFTWARE\\Vantrel_nvo';

const value = (name) => windows.registryText(KEY, name);

// A missing value leaves the separator alone, in the library too.
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
