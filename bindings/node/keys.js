'use strict';
// The keys of the configuration: constants, and lookup by text.

const { KEYS } = require('./bridge.generated');
const { KeyError } = require('./errors');
const { text } = require('./arguments');
const { didYouMean } = require('./suggestions');

const PREFIX = 'vtr.';
const INSTANCE_PREFIX = 'vtr.instance.';

// A key of the catalogue, with the properties of its values.
class Key {
    constructor(text, { type, default: default_, unit, allowed }) {
        Object.assign(this, { text, type, default: default_, unit, allowed: Object.freeze([...allowed]) });
        Object.freeze(this);
    }

    toString() {
        return this.text;
    }
}

// status.adb_port -> statusAdbPort
const memberOf = (name) => name.replace(/[._](.)/g, (_, letter) => letter.toUpperCase());

const propertiesOf = (scope) => KEYS.filter((one) => one.scope === scope);

function constants(scope, prefix) {
    const pairs = propertiesOf(scope).map((one) => [memberOf(one.name), new Key(prefix + one.name, one)]);
    return Object.freeze(Object.fromEntries(pairs));
}

const keys = Object.freeze({
    global: constants('global', PREFIX),
    instance: (name) => constants('instance', `${INSTANCE_PREFIX}${text(name, 'name')}.`),
});

// The parts of a key; null when it is neither a global key nor a key of an instance. An instance's name ends
// at the next ".".
function splitKey(key) {
    if (!key.startsWith(PREFIX)) return null;
    if (!key.startsWith(INSTANCE_PREFIX)) return { scope: 'global', instance: null, name: key.slice(PREFIX.length) };
    const dot = key.indexOf('.', INSTANCE_PREFIX.length);
    if (dot < 0) return null;
    return { scope: 'instance', instance: key.slice(INSTANCE_PREFIX.length, dot), name: key.slice(dot + 1) };
}

const catalogue = {
    global: new Map(propertiesOf('global').map((one) => [one.name, one])),
    instance: new Map(propertiesOf('instance').map((one) => [one.name, one])),
};

// The property of a key, with the instance's name or null; null for an unknown key.
function findProperty(key) {
    const parts = splitKey(key);
    const found = parts && catalogue[parts.scope].get(parts.name);
    return found ? { ...found, instance: parts.instance } : null;
}

function unknownKey(key) {
    const parts = splitKey(key) || { scope: 'global', name: key };
    const prefix = parts.scope === 'instance' ? `${INSTANCE_PREFIX}${parts.instance}.` : PREFIX;
    const known = [...catalogue[parts.scope].keys()].map((name) => prefix + name);
    const { words, suggestion } = didYouMean(key, known, parts.name.length);
    return new KeyError(`there is no key "${key}"${words}`, key, suggestion);
}

const withArticle = (type) => `${type.startsWith('i') ? 'an' : 'a'} ${type}`;

// As findProperty(), but throws KeyError for an unknown key or another type. Without a type any is accepted.
function requireProperty(key, type = null) {
    const property = findProperty(key);
    if (property === null) throw unknownKey(key);
    if (type !== null && property.type !== type) {
        throw new KeyError(`"${key}" is ${withArticle(property.type)}, not ${withArticle(type)}`, key);
    }
    return property;
}

module.exports = { Key, keys, splitKey, findProperty, requireProperty, INSTANCE_PREFIX };
