'use strict';
// suite.js KIT: runs each test file of the Node binding in its own process and data folder, and reports the
// files in the format of GoogleTest.
const { spawnSync } = require('child_process');
const fs = require('fs');
const os = require('os');
const path = require('path');

const LIMIT = 120000;
const kit = process.argv[2];
const tests = path.join(kit, 'tests', 'bindings', 'node');
const work = fs.mkdtempSync(path.join(os.tmpdir(), 'node-'));

// The exit status alone does not prove that all tests ran.
function run(name) {
    const data = path.join(work, name);
    const output = path.join(work, `${name}.txt`);
    fs.mkdirSync(data);
    const file = fs.openSync(output, 'w');
    const { status } = spawnSync(process.execPath, ['--expose-gc', '--test-reporter=tap', path.join(tests, name)], {
        env: { ...process.env, QX_TEST_DATA: data, QX_TEST_BUILD: kit },
        stdio: ['ignore', file, file],
        timeout: LIMIT,
    });
    fs.closeSync(file);
    const text = fs.readFileSync(output, 'utf8');
    return { isPassed: status === 0 && /^# pass [1-9]/m.test(text) && /^# fail 0\r?$/m.test(text), text };
}

let failures = 0;
for (const name of fs.readdirSync(tests).filter((one) => one.endsWith('.test.js'))) {
    const begin = Date.now();
    console.log(`[ RUN      ] ${name}`);
    const { isPassed, text } = run(name);
    if (!isPassed) {
        failures += 1;
        console.log(text);
    }
    console.log(`${isPassed ? '[       OK ]' : '[  FAILED  ]'} ${name} (${Date.now() - begin} ms)`);
}
fs.rmSync(work, { recursive: true, force: true, maxRetries: 10 });
process.exitCode = failures === 0 ? 0 : 1;
