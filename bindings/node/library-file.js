'use strict';
// Where QX-Bridge.dll is.

const fs = require('fs');
const path = require('path');

const NAME = 'QX-Bridge.dll';

// Windows loads no DLL from inside Electron's archive. What Electron keeps out of it has the same place in
// the folder beside it.
function outsideArchive(file) {
    const outside = file.replace(/([\\/]app\.asar)(?=[\\/])/i, '$1.unpacked');
    return fs.existsSync(outside) ? outside : file;
}

// The library that came with this package; else the one of the current folder.
function libraryFile(folder = __dirname) {
    const own = outsideArchive(path.join(folder, 'bin', NAME));
    return fs.existsSync(own) ? own : NAME;
}

module.exports = { libraryFile, outsideArchive };
