// The same for ES modules. A process has one library, however it was loaded.
import binding from './index.js';

export const {
    load, preflight, useFolders, keys, Key, CLIENTS, RESULT, EVENTS, IMAGES,
    BridgeError, BridgeUsageError, KeyError, PreflightError, ListenError, EventOverflow, AbortError, TimeoutError,
} = binding;
export default binding;
