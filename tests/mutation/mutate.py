#!/usr/bin/env python3
"""Makes small changes to the pure cores, one at a time, and checks whether a test detects them.

    mutate.py [N]         try N mutants, distributed over the cores by their number of places
    mutate.py --again     retry the survivors of the last run
    mutate.py --list      list the number of places per file

Changes copies of the tree in build/mutation and writes report.txt there, with a line for each mutant.
The exit status is 1 if the tests detect fewer than 90 % of the mutants."""

import argparse
import json
import os
import queue
import random
import sys
import threading
import time
from collections import Counter

sys.dont_write_bytecode = True  # leaves no files in the tree
import cores
import mutators
import trees

REPORT = trees.MUTATION / "report.txt"
RECORD = trees.MUTATION / "report.json"
WANTED = 0.9


def source(path):
    return (trees.ROOT / path).read_text()


def all_places():
    return {path: mutators.places(source(path), parts) for path, parts in cores.CORES.items()}


def quotas(places, wanted):
    """The number of mutants per file, in proportion to its places, with the largest remainders rounded up."""
    total = sum(len(of_file) for of_file in places.values())
    exact = {path: wanted * len(of_file) / total for path, of_file in places.items()}
    shares = {path: int(share) for path, share in exact.items()}
    by_fraction = sorted(exact, key=lambda path: (shares[path] - exact[path], path))
    for path in by_fraction[:wanted - sum(shares.values())]:
        shares[path] += 1
    return shares


def candidates(of_file, chance):
    """The mutants of a file in random order: one for each place, then the others, as substitutes for
    mutants that do not compile."""
    ways = [(place, chance.sample(place.replacements, len(place.replacements)))
            for place in chance.sample(of_file, len(of_file))]
    first = [(place, texts[0]) for place, texts in ways]
    return first + [(place, text) for place, texts in ways for text in texts[1:]]


def flat(text):
    return " ".join(text.split())


def described(path, text, place, replacement, result, test):
    """The record of a mutant, with the changed lines before and after the change."""
    start = text.rfind("\n", 0, place.start) + 1
    end = text.find("\n", place.end)
    return {"path": path, "line": text.count("\n", 0, place.start) + 1, "operator": place.operator,
            "start": place.start, "end": place.end, "replacement": replacement,
            "result": result, "test": test, "before": flat(text[start:end]),
            "after": flat(text[start:place.start] + replacement + text[place.end:end])}


class Jobs:
    """The files and their candidates, for several trees in parallel. One tree handles all mutants of a
    file, so the file is restored only once."""

    def __init__(self, work, total):
        self.waiting = queue.SimpleQueue()
        for job in sorted(work, key=lambda job: (-job[1], job[0])):
            self.waiting.put(job)
        self.done = []
        self.refused = 0
        self.total = total
        self.errors = []
        self.started = time.monotonic()

    def work(self, tree):
        try:
            tree.prepare()
            while not self.errors:
                path, count, mutants = self.waiting.get_nowait()
                self.work_on(tree, path, count, mutants)
        except queue.Empty:
            pass
        except BaseException as error:  # reported by the waiting thread
            self.errors.append(error)

    def work_on(self, tree, path, count, mutants):
        text = source(path)
        for place, replacement in mutants:
            if count == 0 or self.errors:
                break
            result, test = tree.try_mutant(path, mutators.mutated(text, place, replacement))
            if result == "does not compile":
                self.refused += 1
                continue
            count -= 1
            self.add(described(path, text, place, replacement, result, test))
        tree.restore(path)

    def add(self, mutant):
        self.done.append(mutant)
        if mutant["result"] == "survived" or len(self.done) % 20 == 0:
            print(f"{len(self.done):4}/{self.total} after {time.monotonic() - self.started:.0f} s: "
                  f"{line_of(mutant)}", flush=True)

    def run(self, trees_):
        threads = [threading.Thread(target=self.work, args=(tree,)) for tree in trees_]
        for thread in threads:
            thread.start()
        self.wait_for(threads)
        if self.errors:
            raise self.errors[0]
        return self.done

    def wait_for(self, threads):
        try:
            for thread in threads:
                thread.join()
        except KeyboardInterrupt as stop:  # each tree ends its current work
            self.errors.append(stop)
            self.wait_for(threads)


def line_of(mutant):
    result = mutant["result"] + (f" by {mutant['test']}" if mutant["test"] else "")
    return (f"{mutant['path']}:{mutant['line']} {mutant['operator']}: {result}: "
            f"{mutant['before']} -> {mutant['after']}")


def summary(mutants):
    lines = []
    for path in sorted({one["path"] for one in mutants}):
        results = Counter(one["result"] for one in mutants if one["path"] == path)
        count = sum(results.values())
        lines.append(f"{path:32} {count:4} mutants {results['survived']:3} survived "
                     f"{100 * (1 - results['survived'] / count):5.1f} %")
    results = Counter(one["result"] for one in mutants)
    killed = len(mutants) - results["survived"]
    lines.append(f"{len(mutants)} mutants: {killed} killed ({results['timeout']} of them by not "
                 f"ending), {results['survived']} survived: {100 * killed / len(mutants):.1f} %")
    return lines, killed / len(mutants)


def write_report(mutants):
    mutants.sort(key=lambda one: (one["path"], one["start"], one["replacement"]))
    RECORD.write_text(json.dumps(mutants, indent=1) + "\n")
    REPORT.write_text("".join(line_of(one) + "\n" for one in mutants))


def chosen_work(wanted, seed):
    places = all_places()
    shares = quotas(places, wanted)
    return [(path, shares[path], candidates(of_file, random.Random(f"{seed} {path}")))
            for path, of_file in places.items() if shares[path] > 0]


def survivors_work(mutants):
    """The survivors of a report, if it is about the same source."""
    work = {}
    for one in mutants:
        place = mutators.Place(one["operator"], one["start"], one["end"], (one["replacement"],))
        now = described(one["path"], source(one["path"]), place, one["replacement"], "", "")
        if (now["before"], now["after"]) != (one["before"], one["after"]):
            raise SystemExit(f"error: {one['path']} is not what the last report is about")
        work.setdefault(one["path"], []).append((place, one["replacement"]))
    return [(path, len(of_file), of_file) for path, of_file in work.items()]


def mutate(work, copies, kept=()):
    """Tries the mutants, reports them and those kept, and returns the share of killed mutants."""
    total = sum(count for _, count, _ in work)
    needed = sorted({test for path, _, _ in work for test in cores.tests_of(path)})
    trees.MUTATION.mkdir(parents=True, exist_ok=True)
    jobs = Jobs(work, total)
    mutants = list(kept) + jobs.run([trees.Tree(number, needed) for number in range(copies)])
    write_report(mutants)
    lines, share = summary(mutants)
    print("\n".join(lines))
    print(f"{jobs.refused} more did not compile; {time.monotonic() - jobs.started:.0f} s; {REPORT}")
    return share


def main():
    reader = argparse.ArgumentParser(prog="./run mutate")
    reader.add_argument("count", nargs="?", type=int, default=200)
    reader.add_argument("--seed", default="1", help="selects other mutants")
    reader.add_argument("--copies", type=int, default=2, help="number of trees to use in parallel")
    reader.add_argument("--again", action="store_true", help="retry the survivors of the last run")
    reader.add_argument("--list", action="store_true", help="list the number of places per file")
    asked = reader.parse_args()
    if asked.count < 1 or asked.copies < 1:
        reader.error("there is nothing to do")
    if asked.list:
        counts = {path: len(of_file) for path, of_file in all_places().items()}
        print("\n".join(f"{path:32} {count:4}" for path, count in counts.items()))
        print(f"{sum(counts.values())} places")
        return
    os.nice(15)
    if asked.again:
        before = json.loads(RECORD.read_text())
        work = survivors_work([one for one in before if one["result"] == "survived"])
        share = mutate(work, asked.copies, [one for one in before if one["result"] != "survived"])
    else:
        share = mutate(chosen_work(asked.count, asked.seed), asked.copies)
    sys.exit(0 if share >= WANTED else 1)


if __name__ == "__main__":
    main()
