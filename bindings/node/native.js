'use strict';
// The C interface of QX-Bridge.dll as koffi declares it. The declarations are those of bridge.h,
// with koffi's names of its types: a test compares the two.

const koffi = require('koffi');
const path = require('path');

const CALLBACKS = [
    'void bridgeOnAppInstalled(const char *instance, const char *package, const char *activity, const char *appLabel, int32_t versionCode, const char *versionName, const char *iconFilePath, bool isUpdate)',
    'void bridgeOnAppUninstalled(const char *instance, const char *package)',
    'void bridgeOnApkInstallCompleted(const char *instance, int32_t status, const char *apkFilePath)',
    'void bridgeOnInstanceListUpdated()',
    'void bridgeInstallImageProgress(const char *imageName, int32_t status, double progress)',
    'void bridgeOnCreateInstanceCompleted(int32_t status, const char *instance)',
    'void bridgeOnInstanceConfigurationChanged(const char *instance)',
    'void bridgeOnAppDisplayed(const char *instance, const char *package)',
    'void bridgeOnAccountListUpdated(const char *instance, const char *emailId, int32_t action)',
];

// BridgeText: a text of the library's, copied and given back to bridgeFreeMemory.
const FUNCTIONS = [
    'int32_t bridgeApiInit(const char *clientId)',
    'int32_t bridgeApiInitEx(const char *clientId, bool noConfFile, int64_t reserved, const char *logFilePath)',
    'int32_t bridgeApiFini()',
    'bool bridgeConfGetBool(const char *key)',
    'int32_t bridgeConfGetI32(const char *key)',
    'int64_t bridgeConfGetI64(const char *key)',
    'BridgeText bridgeConfGetString(const char *key)',
    'BridgeText bridgeConfGetMultiString(const char *key)',
    'int32_t bridgeConfSetBool(const char *key, bool value)',
    'int32_t bridgeConfSetI32(const char *key, int32_t value)',
    'int32_t bridgeConfSetI64(const char *key, int64_t value)',
    'int32_t bridgeConfSetString(const char *key, const char *value)',
    'int32_t bridgeConfSetMultiString(const char *key, const char *value)',
    'int32_t bridgeConfCommit()',
    'int32_t bridgeConfCommitToFile(const char *path)',
    'BridgeText bridgeConfGetInstances()',
    'void bridgeFreeMemory(void *memory)',
    'int32_t bridgeLaunchApp(const char *instance, const char *package)',
    'int32_t bridgeLaunchAppStore(const char *instance, const char *store, const char *package)',
    'int32_t bridgeLaunchUrl(const char *instance, const char *url)',
    'int32_t bridgeInstallApk(const char *instance, const char *apkFilePath)',
    'int32_t bridgeUninstallApp(const char *instance, const char *package)',
    'int32_t bridgeInstallImage(const char *imageName)',
    'int32_t bridgeCreateFreshInstance(const char *imageName, const char *cpu, const char *ram, const char *graphicEngine, const char *graphicRenderer, const char *deviceProfile)',
    'int32_t bridgePlrShutdown(const char *instance, bool flag)',
    'void bridgeShutdown()',
    'void bridgeRegisterCallbacks(bridgeOnAppInstalled *onAppInstalled, bridgeOnAppUninstalled *onAppUninstalled, bridgeOnApkInstallCompleted *onApkInstallCompleted, bridgeOnInstanceListUpdated *onInstanceListUpdated, bridgeInstallImageProgress *installImageProgress, bridgeOnCreateInstanceCompleted *onCreateInstanceCompleted, bridgeOnInstanceConfigurationChanged *onInstanceConfigurationChanged, bridgeOnAppDisplayed *onAppDisplayed, bridgeOnAccountListUpdated *onAccountListUpdated)',
    'BridgeText bridgeGetInstalledApps(const char *instance)',
];

// name and parameter names of a declaration above
function parts(declaration) {
    const [, name, list] = /(\w+)\((.*)\)$/.exec(declaration);
    return { name, parameters: list === '' ? [] : list.split(', ').map((one) => /\w+$/.exec(one)[0]) };
}

// koffi frees a DLL when Node ends, in which the event thread may still run. A pinned one stays.
function pin(library) {
    const kernel = koffi.load('kernel32.dll');
    const getModuleHandleEx = kernel.func('int32_t GetModuleHandleExW(uint32_t flags, str16 name, _Out_ void **module)');
    const GET_MODULE_HANDLE_EX_FLAG_PIN = 1;
    if (getModuleHandleEx(GET_MODULE_HANDLE_EX_FLAG_PIN, library, [null]) === 0) {
        throw new Error(`${library} cannot be kept loaded`);
    }
}

// Loads the library and gives its functions by name.
function load(file) {
    const full = path.resolve(file);
    // Qt from beside the library, and not another program's from PATH.
    for (const qt of ['Qt5Core.dll', 'Qt5Network.dll']) koffi.load(path.join(path.dirname(full), qt));
    const library = koffi.load(full);
    pin(full);

    for (const declaration of CALLBACKS) koffi.proto(declaration);
    const functions = {};
    const declare = (declaration) => {
        functions[parts(declaration).name] = library.func(declaration);
    };
    const isFree = (declaration) => declaration.includes('bridgeFreeMemory');
    FUNCTIONS.filter(isFree).forEach(declare);
    koffi.disposable('BridgeText', 'str', functions.bridgeFreeMemory);
    FUNCTIONS.filter((declaration) => !isFree(declaration)).forEach(declare);
    return functions;
}

// UTF-8 text that is never freed: the library keeps the pointer of the client id.
const keptTexts = new Map();
function keptText(text) {
    if (!keptTexts.has(text)) {
        const size = Buffer.byteLength(text, 'utf8') + 1;
        const memory = koffi.alloc('char', size);
        koffi.encode(memory, koffi.array('char', size, 'String'), text);
        keptTexts.set(text, memory);
    }
    return keptTexts.get(text);
}

// Function pointers for bridgeRegisterCallbacks. receive(callback, values) runs on the event loop
// while the library's event thread waits for it; the pointers are good for ever.
function callbackPointers(receive) {
    return CALLBACKS.map((declaration) => {
        const { name, parameters } = parts(declaration);
        return koffi.register((...values) => {
            receive(name, Object.fromEntries(parameters.map((parameter, i) => [parameter, values[i]])));
        }, `${name} *`);
    });
}

module.exports = { CALLBACKS, FUNCTIONS, load, keptText, callbackPointers };
