'use strict';
// What the binding knows of the library's configuration without asking it, since some questions end the
// process: which instances there are, and the values as of the last load.

const { IMAGES } = require('./bridge.generated');
const { KeyError } = require('./errors');
const { readConfFile } = require('./conf-file');
const { didYouMean } = require('./suggestions');

const isImage = (instance) => IMAGES.includes(instance.split('_')[0]);

function requireImage(instance) {
    if (isImage(instance)) return;
    throw new KeyError(`"${instance.split('_')[0]}" is not an image; there are ${IMAGES.join(', ')}`, instance);
}

function requireInstanceName(name) {
    if (name === '') throw new KeyError('an instance has a name', name);
    const wrong = [['.', 'a "."'], ['=', 'a "="'], ['\n', 'a line feed']].find(([letter]) => name.includes(letter));
    if (wrong) throw new KeyError(`${JSON.stringify(name)} has ${wrong[1]}, which an instance's name cannot have`, name);
    requireImage(name);
}

// Whether the library makes a number of the text; the empty text is 0.
function isNumber(value) {
    const match = /^[ \t\n\v\f\r]*(?:\+?\d+|-\d+)/.exec(value);
    if (match === null) return value === '';
    return /[1-9]/.test(match[0]) || match[0].length === value.length;
}

const READABLE = { bool: (value) => value === '0' || value === '1', i32: isNumber };

class KnownValues {
    #file = null;
    #fileInstances = new Set();
    #created = new Set();
    #values = new Map(); // by key, as of the last load, and what has been set since
    #staged = new Set(); // keys whose value no load replaces

    // The library is about to load this file; null: none.
    start(file) {
        this.#file = file;
        this.load();
    }

    // The library has loaded its file again, or is about to.
    load() {
        if (this.#file === null) return;
        const { instances, values } = readConfFile(this.#file);
        this.#fileInstances = instances;
        for (const [key, value] of values) {
            if (!this.#staged.has(key)) this.#values.set(key, value);
        }
    }

    // The library is about to commit: it loads, and what was staged is of the file afterwards.
    commit() {
        this.load();
        this.#staged.clear();
    }

    set(key, value) {
        this.#values.set(key, value);
        this.#staged.add(key);
    }

    // An instance that the next set makes.
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

    // A listing ends the process where the library knows, or is just loading, an instance of another image.
    requireImages() {
        this.#fileInstances.forEach(requireImage);
        this.#readInstances();
        this.#fileInstances.forEach(requireImage);
    }

    // Whether the library can read the key's value.
    isReadable(key, { type, default: default_ }) {
        const value = this.#values.has(key) ? this.#values.get(key) : default_;
        return !(type in READABLE) || READABLE[type](value);
    }

    requireReadable(key, property) {
        if (this.isReadable(key, property)) return;
        if (!this.#values.has(key)) throw new KeyError(`"${key}" has no value and no default`, key);
        throw new KeyError(`"${key}" has a value that cannot be read: "${this.#values.get(key)}"`, key);
    }

    #has(name) {
        return this.#fileInstances.has(name) || this.#created.has(name);
    }

    #readInstances() {
        if (this.#file !== null) this.#fileInstances = readConfFile(this.#file).instances;
    }
}

module.exports = { KnownValues };
