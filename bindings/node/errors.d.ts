/** What the binding throws, besides TypeError and RangeError for values of the wrong JavaScript type. */
import { Problem } from './index';

/** A function of the library returned a code other than 0, or nothing in place of a text. */
export class BridgeError extends Error {
    private constructor();
    readonly name: 'BridgeError';
    /** The function, as bridge.h calls it. */
    readonly operation: string;
    readonly code: number;
    /** The code's name, such as "XERR_NOENT"; empty for an error of Windows (codes from 100000). */
    readonly codeName: string;
    /** The code in words, such as "no such file or folder". */
    readonly text: string;
    /** The file that the function works on; empty where there is none. */
    readonly file: string;
    /** The log, which has the cause. */
    readonly log: string;
}

/** The binding was asked for something that cannot be, at this time or at all. */
export class BridgeUsageError extends Error {}

/** A key, an instance or a stored value for which the library would end the process. */
export class KeyError extends BridgeUsageError {
    private constructor();
    readonly name: 'KeyError';
    /** The key, or the instance, that the error is about. */
    readonly key: string;
    /** What may have been meant; empty where nothing is near. */
    readonly suggestion: string;
}

/** The library would not start. */
export class PreflightError extends Error {
    private constructor();
    readonly name: 'PreflightError';
    readonly problems: readonly Problem[];
}

/** The events do not come to this process. */
export class ListenError extends Error {
    private constructor();
    readonly name: 'ListenError';
    /** The process to which they come; 0: to none. */
    readonly processId: number;
}

/** More events were waiting in a stream than its limit. */
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

/** A wait took longer than its time-out. */
export class TimeoutError extends Error {
    private constructor();
    readonly name: 'TimeoutError';
}
