'use strict';
// The binding's own copy of the library's configuration: the instances, and the values of the last load. The
// checks use it, because asking the library could end the process.

const { IMAGES } = require('./bridge.generated');
const { KeyError } = require('./errors');
const { readConfFile } = require('./conf-file');
const { INSTANCE_PREFIX } = require('./keys');
const { didYouMean } = require('./suggestions');

const isImage = (instance) => IMAGES.includes(instance.split('_')[0]);

function requireImage(instance) {
    if (isImage(instance)) return;
    throw new KeyError(`"${instance.split('_')[0]}" is not an image; there are ${IMAGES.join(', ')}`, instance);
}

function requireInstanceName(name) {
    if (name === '' || /[.=\n]/.test(name)) throw new KeyError(`"${name}" cannot be the name of an instance`, name);
    requireImage(name);
}

// Whether the library reads the text as a number. The empty text is 0.
function isNumber(value) {
    const match = /^[ \t\n\v\f\r]*(?:\+?\d+|-\d+)/.exec(value);
    if (match === null) return value === '';
    return /[1-9]/.test(match[0]) || match[0].length === value.length;
}

const unreadable = (key, value) => new KeyError(`"${key}" has a value that cannot be read: "${value}"`, key);

// Numbers of each instance that a listing reads.
const LISTED_NUMBERS = ['ram', 'cpus'];

const READABLE = { bool: (value) => value === '0' || value === '1', i32: isNumber };

class KnownValues {
    #file = null;
    #fileInstances = new Set();
    #created = new Set();
    #values = new Map(); // by key: the values of the last load, and those set since
    #staged = new Set(); // keys whose value a load does not replace

    // Called before the library loads this file; null for no file.
    start(file) {
        this.#file = file;
        this.load();
    }

    // Called when the library has reloaded its file, or is about to.
    load() {
        if (this.#file === null) return;
        const { instances, values } = readConfFile(this.#file);
        this.#fileInstances = instances;
        for (const [key, value] of values) {
            if (!this.#staged.has(key)) this.#values.set(key, value);
        }
    }

    // Called before a commit, in which the library reloads the file and writes the staged values.
    commit() {
        this.load();
        this.#staged.clear();
    }

    set(key, value) {
        this.#values.set(key, value);
        this.#staged.add(key);
    }

    // Adds an instance, which the next set creates.
    create(name) {
        requireInstanceName(name);
        this.#created.add(name);
    }

    requireInstance(name) {
        if (this.#has(name)) return;
        this.#readInstances();
        if (this.#has(name)) return;
        const { words, suggestion } = didYouMean(name, [...this.#fileInstances, ...this.#created]);
        throw new KeyError(`there is no instance "${name}"${words}`, name, suggestion);
    }

    // Throws where a listing would end the process. The file is read too, because the library may be loading
    // it on its event thread.
    requireListable() {
        this.#requireListable(this.#fileInstances, this.#values);
        if (this.#file === null) return;
        const { instances, values } = readConfFile(this.#file);
        this.#fileInstances = instances;
        this.#requireListable(instances, values);
    }

    // Whether the library can read the key's value.
    isReadable(key, { type, default: default_ }) {
        const value = this.#values.has(key) ? this.#values.get(key) : default_;
        return !(type in READABLE) || READABLE[type](value);
    }

    requireReadable(key, property) {
        if (this.isReadable(key, property)) return;
        const value = this.#values.get(key) || '';
        if (value === '' && property.default === '') throw new KeyError(`"${key}" has no value and no default`, key);
        throw unreadable(key, value);
    }

    #has(name) {
        return this.#fileInstances.has(name) || this.#created.has(name);
    }

    #requireListable(instances, values) {
        for (const name of instances) {
            requireImage(name);
            for (const key of LISTED_NUMBERS.map((property) => `${INSTANCE_PREFIX}${name}.${property}`)) {
                const value = this.#staged.has(key) ? '' : values.get(key) || '';
                if (!isNumber(value)) throw unreadable(key, value);
            }
        }
    }

    #readInstances() {
        if (this.#file !== null) this.#fileInstances = readConfFile(this.#file).instances;
    }
}

module.exports = { KnownValues };
