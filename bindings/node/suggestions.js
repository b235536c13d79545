'use strict';
// Suggestions for a mistyped name.

// The Levenshtein distance: the number of letters to insert, remove or replace.
function distance(a, b) {
    let row = Array.from({ length: b.length + 1 }, (_, i) => i);
    for (let i = 1; i <= a.length; ++i) {
        const next = [i];
        for (let j = 1; j <= b.length; ++j) {
            next[j] = Math.min(row[j] + 1, next[j - 1] + 1, row[j - 1] + (a[i - 1] === b[j - 1] ? 0 : 1));
        }
        row = next;
    }
    return row[b.length];
}

const LONG_NAME = 8;

// The end of a message that suggests the nearest known name, the first of several; empty when none is near.
// `length` is the length of the part that can differ.
function didYouMean(wrong, known, length = wrong.length) {
    const most = length >= LONG_NAME ? 3 : 2;
    let suggestion = '';
    let least = most + 1;
    for (const name of known) {
        const letters = distance(wrong, name);
        if (letters >= least) continue;
        least = letters;
        suggestion = name;
    }
    return { suggestion, words: suggestion === '' ? '' : `; did you mean "${suggestion}"?` };
}

module.exports = { didYouMean };
