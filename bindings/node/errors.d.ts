/** The exceptions of the binding, besides TypeError and RangeError for values of the wrong JavaScript type. */
import { Problem } from './index';

/** A function of the library returned a code other than 0, or null instead of a text. */
export class BridgeError extends Error {
    private constructor();
    readonly name: 'BridgeError';
    /** The name of the function in bridge.h. */
    readonly operation: string;
    readonly code: number;
    /** The code's name, such as "XERR_NOENT"; empty for a Windows error (codes from 100000). */
    readonly codeName: string;
    /** The text of the code, such as "no such file or folder". */
    readonly text: string;
    /** The file that the function works on; empty when there is none. */
    readonly file: string;
    /** The path of the log, which has the cause. */
    readonly log: string;
}

/** A call that is not allowed, or not allowed at this time. */
export class BridgeUsageError extends Error {}

/** A key, instance or stored value with which the library would end the process. */
export class KeyError extends BridgeUsageError {
    private constructor();
    readonly name: 'KeyError';
    /** The key or instance that caused the error. */
    readonly key: string;
    /** The nearest known name; empty when none is near. */
    readonly suggestion: string;
}

/** A check before the start failed. */
export class PreflightError extends Error {
    private constructor();
    readonly name: 'PreflightError';
    readonly problems: readonly Problem[];
}

/** This process does not receive the events. */
export class ListenError extends Error {
    private constructor();
    readonly name: 'ListenError';
    /** The process that receives them; 0 when there is none. */
    readonly processId: number;
}

/** More events than the limit were waiting in a stream. */
export class EventOverflow extends Error {
    private constructor();
    readonly name: 'EventOverflow';
    readonly limit: number;
}

/** A signal ended a wait. */
export class AbortError extends Error {
    private constructor();
    readonly name: 'AbortError';
    readonly code: 'ABORT_ERR';
    /** The signal's reason. */
    readonly cause: unknown;
}

/** A wait took longer than its timeout. */
export class TimeoutError extends Error {
    private constructor();
    readonly name: 'TimeoutError';
}
