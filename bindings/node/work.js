'use strict';
// Work that a program was started for, and the event that reports its outcome.

const { BridgeUsageError } = require('./errors');
const { optionalFunction } = require('./arguments');
const { limited } = require('./waiting');

const IMAGE_IS_INSTALLED = 2;

// Waits for one event. It is created before the program starts, and ends with the event or with the library.
class Watch {
    #values = null;
    #error = null;
    #waiting = null; // the promise for all callers, with its resolve and reject

    constructor(event, takes) {
        this.event = event;
        this.takes = takes;
    }

    get isOver() {
        return this.#values !== null || this.#error !== null;
    }

    outcome() {
        if (this.#values !== null) return Promise.resolve(this.#values);
        if (this.#error !== null) return Promise.reject(this.#error);
        if (this.#waiting === null) {
            this.#waiting = {};
            this.#waiting.promise = new Promise((resolve, reject) => Object.assign(this.#waiting, { resolve, reject }));
        }
        return this.#waiting.promise;
    }

    complete(values) {
        this.#values = values;
        if (this.#waiting !== null) this.#waiting.resolve(values);
    }

    fail(error) {
        this.#error = error;
        if (this.#waiting !== null) this.#waiting.reject(error);
    }
}

// The object that a host gets.
class Work {
    #operation;
    #watch;
    #requireListening;

    constructor(operation, watch, requireListening) {
        this.#operation = operation;
        this.#watch = watch;
        this.#requireListening = requireListening;
    }

    finished(options) {
        return limited(this.#operation, options, () => {
            if (!this.#watch.isOver) this.#requireListening();
            return this.#watch.outcome();
        });
    }
}

class Works {
    #watches = new Set(); // in start order
    #requireListening;

    constructor(requireListening) {
        this.#requireListening = requireListening;
    }

    // start() starts the program or throws. takes(values) is whether an event of that name is the outcome.
    start(operation, event, takes, start) {
        const watch = new Watch(event, takes);
        this.#watches.add(watch);
        try {
            start();
        } catch (error) {
            this.#watches.delete(watch);
            throw error;
        }
        return new Work(operation, watch, this.#requireListening);
    }

    // An event completes only the oldest work that matches it, so two equal works need two events.
    receive(event, values) {
        for (const watch of this.#watches) {
            if (watch.event !== event || !watch.takes(values)) continue;
            this.#watches.delete(watch);
            watch.complete(values);
            return;
        }
    }

    end() {
        for (const watch of this.#watches) watch.fail(new BridgeUsageError('the library ended before the work did'));
        this.#watches.clear();
    }
}

// Other statuses go to the host's function. It runs as a microtask, so that an exception in it does not stop
// the delivery of events.
function imageInstalled(imageName, { progress } = {}) {
    const report = optionalFunction(progress, 'progress');
    return (values) => {
        if (values.imageName !== imageName) return false;
        if (values.status === IMAGE_IS_INSTALLED) return true;
        if (report !== null) queueMicrotask(() => report(values));
        return false;
    };
}

module.exports = { Works, imageInstalled };
