'use strict';
// Gives this process its own registry and the data folder that QX_TEST_DATA names.

const fs = require('fs');
const path = require('path');
const { useFolders } = require('qx-bridge');

const data = path.resolve(process.env.QX_TEST_DATA);
fs.mkdirSync(path.join(data, 'Logs'), { recursive: true });
useFolders({ dataFolder: data, installFolder: 'C:\\None' });

module.exports = { data };
