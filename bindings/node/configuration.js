'use strict';
// Typed access to the configuration. Checks run before each call that could end the process.

const { KeyError } = require('./errors');
const { Key, INSTANCE_PREFIX, findProperty, requireProperty } = require('./keys');
const { text, boolean, i32, i64, multiString } = require('./arguments');
const product = require('./product');
const { limited } = require('./waiting');

// Numbers of an instance whose defaults are not 0. For an instance that is not loaded all of them are 0.
const NUMBERS_OF_A_LOADED_INSTANCE = ['dpi', 'max_fps', 'eco_mode_max_fps', 'gl_win_height'];

const METHODS = { bool: 'Bool', i32: 'I32', i64: 'I64', string: 'String', 'multi-string': 'MultiString' };

class Configuration {
    #call;
    #known;
    #loaded = new Set(); // instances known to be loaded

    constructor(call, known) {
        this.#call = call;
        this.#known = known;
    }

    get(key) {
        const name = textOf(key);
        return this[`get${METHODS[requireProperty(name).type]}`](name);
    }
    set(key, value) {
        const name = textOf(key);
        this[`set${METHODS[requireProperty(name).type]}`](name, value);
    }

    getBool(key) {
        this.#requireReadable('bridgeConfGetBool', key, 'bool');
        return this.#call.value('bridgeConfGetBool', key);
    }
    getI32(key) {
        this.#requireReadable('bridgeConfGetI32', key, 'i32');
        return this.#call.value('bridgeConfGetI32', key);
    }
    getI64(key) {
        this.#requireReadable('bridgeConfGetI64', key, 'i64');
        return BigInt(this.#call.value('bridgeConfGetI64', key));
    }
    getString(key) {
        this.#requireReadable('bridgeConfGetString', key, 'string');
        return this.#call.text('bridgeConfGetString', key);
    }
    getMultiString(key) {
        this.#requireReadable('bridgeConfGetMultiString', key, 'multi-string');
        const stored = this.#call.text('bridgeConfGetMultiString', key);
        return stored === '' ? [] : stored.split(',');
    }

    setBool(key, value) {
        this.#set('bridgeConfSetBool', key, 'bool', boolean(value, 'value'), value ? '1' : '0');
    }
    setI32(key, value) {
        this.#set('bridgeConfSetI32', key, 'i32', i32(value, 'value'));
    }
    setI64(key, value) {
        this.#set('bridgeConfSetI64', key, 'i64', i64(value, 'value'));
    }
    setString(key, value) {
        this.#set('bridgeConfSetString', key, 'string', text(value, 'value'));
    }
    setMultiString(key, value) {
        this.#set('bridgeConfSetMultiString', key, 'multi-string', multiString(value, 'value'));
    }

    addInstance(name) {
        this.#known.create(text(name, 'name'));
    }

    commit() {
        this.#call.requireReady('bridgeConfCommit');
        this.#known.commit();
        this.#call.status('bridgeConfCommit', [], product.confFile());
    }
    commitToFile(path) {
        text(path, 'path');
        this.#call.requireReady('bridgeConfCommitToFile');
        this.#known.commit();
        this.#call.status('bridgeConfCommitToFile', [path], path);
    }
    commitAsync(options) {
        return limited('commitAsync', options, () => {
            this.#known.commit();
            return this.#call.statusLater('bridgeConfCommit', [], product.confFile());
        });
    }
    commitToFileAsync(path, options) {
        text(path, 'path');
        return limited('commitToFileAsync', options, () => {
            this.#known.commit();
            return this.#call.statusLater('bridgeConfCommitToFile', [path], path);
        });
    }

    #requireKnown(operation, key, type) {
        text(key, 'key');
        this.#call.requireReady(operation);
        const property = requireProperty(key, type);
        if (property.instance !== null) this.#known.requireInstance(property.instance);
        return property;
    }

    #requireReadable(operation, key, type) {
        const property = this.#requireKnown(operation, key, type);
        if (property.instance !== null) this.#requireLoaded(property.instance);
        this.#known.requireReadable(key, property);
    }

    #set(operation, key, type, value, stored = String(value)) {
        this.#requireKnown(operation, key, type);
        this.#call.status(operation, [key, value]);
        this.#known.set(key, stored);
    }

    #requireLoaded(instance) {
        if (this.#loaded.has(instance)) return;
        if (!this.#isLoaded(instance)) {
            throw new KeyError(`instance "${instance}" is not loaded yet: commit, or wait for instanceListUpdated`, instance);
        }
        this.#loaded.add(instance);
    }

    // Reads only what never ends the process: texts, and numbers whose stored value can be read.
    #isLoaded(instance) {
        const prefix = `${INSTANCE_PREFIX}${instance}.`;
        if (this.#call.text('bridgeConfGetString', `${prefix}display_name`) !== '') return true;
        return NUMBERS_OF_A_LOADED_INSTANCE.map((name) => prefix + name)
            .filter((key) => this.#known.isReadable(key, findProperty(key)))
            .some((key) => this.#call.value('bridgeConfGetI32', key) !== 0);
    }
}

function textOf(key) {
    return key instanceof Key ? key.text : text(key, 'key');
}

module.exports = { Configuration };
