'use strict';
// A registry of this process's own, and a data folder. QX_TEST_DATA names the folder.

const fs = require('fs');
const path = require('path');
const { VERSION } = require('qx-bridge/bridge.generated');
const { setProduct } = require('./registry');

const data = path.resolve(process.env.QX_TEST_DATA);
fs.mkdirSync(path.join(data, 'Logs'), { recursive: true });
setProduct('UserDefinedDir', data);
setProduct('InstallDir', 'C:\\None\\');
setProduct('Version', VERSION);

module.exports = { data, setProduct };
