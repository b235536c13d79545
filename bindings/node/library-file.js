'use strict';
// Finds QX-Bridge.dll.

const fs = require('fs');
const path = require('path');

const NAME = 'QX-Bridge.dll';

// Windows cannot load a DLL from Electron's archive. Unpacked files have the same relative path in the folder
// beside it.
function outsideArchive(file) {
    const outside = file.replace(/([\\/]app\.asar)(?=[\\/])/i, '$1.unpacked');
    return fs.existsSync(outside) ? outside : file;
}

// The library in this package, else the one in the current folder.
function libraryFile(folder = __dirname) {
    const own = outsideArchive(path.join(folder, 'bin', NAME));
    return fs.existsSync(own) ? own : NAME;
}

module.exports = { libraryFile, outsideArchive };
