'use strict';
// Work that a program was started for, and the event that tells its outcome.

const { BridgeUsageError } = require('./errors');
const { optionalFunction } = require('./arguments');
const { limited } = require('./waiting');

const IMAGE_IS_INSTALLED = 2;

// Waits for one event from before the program is started, until the event comes or the library ends.
class Watch {
    #values = null;
    #error = null;
    #waiting = null; // the promise of those who ask, with its resolve and reject

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

// What a host gets. It keeps the outcome, and nothing else.
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
    #watches = new Set(); // in the order of their starts
    #requireListening;

    constructor(requireListening) {
        this.#requireListening = requireListening;
    }

    // start() starts the program, or throws. takes(values): whether an event of that name is the outcome.
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

    // An event is the outcome of one work, the oldest that it fits to: two that were started alike end with
    // two events.
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

// Other statuses than the end's go to the host's function. It runs after the events that are at hand,
// so that one that throws stops nothing here.
function imageInstalled(imageName, { progress } = {}) {
    const tell = optionalFunction(progress, 'progress');
    return (values) => {
        if (values.imageName !== imageName) return false;
        if (values.status === IMAGE_IS_INSTALLED) return true;
        if (tell !== null) queueMicrotask(() => tell(values));
        return false;
    };
}

module.exports = { Works, imageInstalled };
