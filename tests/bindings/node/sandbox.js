'use strict';
// A registry of this process's own, and a data folder. QX_TEST_DATA names the folder.

const fs = require('fs');
const path = require('path');
const { useFolders } = require('qx-bridge');

const data = path.resolve(process.env.QX_TEST_DATA);
fs.mkdirSync(path.join(data, 'Logs'), { recursive: true });
useFolders({ dataFolder: data, installFolder: 'C:\\None' });

module.exports = { data };
