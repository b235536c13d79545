/** The configuration's keys: constants of them, and types of their texts. */
import { GlobalKeys, GlobalProperties, InstanceKeys, InstanceProperties } from './bridge.generated';

/** What a key can hold. */
export type Value = boolean | number | bigint | string | string[];

/** A key of the catalogue. There are those of `keys`. */
export class Key<T extends Value> {
    private constructor();
    private readonly value: T;
    /** The full key, as the file has it. */
    readonly text: string;
    readonly type: 'bool' | 'i32' | 'i64' | 'string' | 'multi-string';
    /** As the file would have it; empty: there is none. */
    readonly default: string;
    /** What a number counts; empty where that is not known. */
    readonly unit: string;
    /** What an element of a list can be; empty: anything. */
    readonly allowed: readonly string[];
    toString(): string;
}

export const keys: {
    readonly global: GlobalKeys;
    /** The keys of an instance, whether it exists or not. */
    instance(name: string): InstanceKeys;
};

/** The type of the value of a key, by its text; never where there is no such key. */
export type ValueOf<K extends string> =
    K extends `vtr.instance.${string}.${infer P}` ? (P extends keyof InstanceProperties ? InstanceProperties[P] : never)
    : K extends `vtr.${infer P}` ? (P extends keyof GlobalProperties ? GlobalProperties[P] : never)
    : never;

/** A key whose values have this type, as text. A plain string, known only at run time, is accepted too. */
export type KeyText<K extends string, T extends Value> =
    string extends K ? K : [ValueOf<K>] extends [never] ? never : ValueOf<K> extends T ? K : never;
