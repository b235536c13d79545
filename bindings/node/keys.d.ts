/** The keys of the configuration: constants, and types of their texts. */
import { GlobalKeys, GlobalProperties, InstanceKeys, InstanceProperties } from './bridge.generated';

/** The types of values. */
export type Value = boolean | number | bigint | string | string[];

/** A key of the catalogue, from `keys`. */
export class Key<T extends Value> {
    private constructor();
    private readonly value: T;
    /** The full key, as in the file. */
    readonly text: string;
    readonly type: 'bool' | 'i32' | 'i64' | 'string' | 'multi-string';
    /** The default in its stored form; empty when there is none. */
    readonly default: string;
    /** The unit of a number; empty when it is not known. */
    readonly unit: string;
    /** The allowed elements of a list; empty when any is allowed. */
    readonly allowed: readonly string[];
    toString(): string;
}

export const keys: {
    readonly global: GlobalKeys;
    /** The keys of an instance, whether it exists or not. */
    instance(name: string): InstanceKeys;
};

/** The value type of a key, by its text; never for an unknown key. */
export type ValueOf<K extends string> =
    K extends `vtr.instance.${string}.${infer P}` ? (P extends keyof InstanceProperties ? InstanceProperties[P] : never)
    : K extends `vtr.${infer P}` ? (P extends keyof GlobalProperties ? GlobalProperties[P] : never)
    : never;

/** The text of a key with this value type. A string known only at run time is accepted too. */
export type KeyText<K extends string, T extends Value> =
    string extends K ? K : [ValueOf<K>] extends [never] ? never : ValueOf<K> extends T ? K : never;
