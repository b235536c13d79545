"""other_compiler.py TREE BUILD COMPILER OPTION...: compiles the files of Source/ and programs/ in TREE to
assembly with another compiler than that of the build tree BUILD. Each file keeps the include folders,
definitions and language standard of BUILD. Prints each warning once and the number of warnings of each
kind. Fails if there is a warning, or if BUILD does not compile one of the files."""
import collections
import concurrent.futures
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys
import tempfile

KEPT = ("-D", "-I", "-std=")
DIAGNOSTIC = re.compile(r"^[^ ].*?: (warning|error|fatal error): ", re.MULTILINE)
KIND = re.compile(r"\[(-W[^\],]*)")


def kept_options(command):
    """The options of a compile command that every compiler supports."""
    words = iter(shlex.split(command))
    for word in words:
        if word == "-isystem":
            yield from (word, next(words))
        elif word.startswith(KEPT):
            yield word


def commands(tree, build):
    """The options of each file, including those that CMake generates for programs/. A file of Source/ can
    have a second entry, for a test."""
    folders = {tree / "Source", tree / "programs", build / "programs"}
    found = {}
    for entry in json.loads((build / "compile_commands.json").read_text(encoding="utf-8")):
        file = pathlib.Path(entry["file"])
        if folders & set(file.parents):
            found.setdefault(file, list(kept_options(entry["command"])))
    return found


def unknown_files(tree, known):
    for folder in ("Source", "programs"):
        for file in sorted((tree / folder).rglob("*.c*")):
            if file.suffix in (".c", ".cpp") and not file.stem.endswith("Posix") and file not in known:
                yield file


def compile_file(compiler, file, options, output):
    done = subprocess.run(
        [*compiler, *options, "-S", "-o", output, file], stdin=subprocess.DEVNULL, capture_output=True,
        text=True, errors="replace", check=False)
    if done.returncode != 0 and not DIAGNOSTIC.search(done.stderr):
        return f"{file}: error: status {done.returncode}\n{done.stderr}"
    return done.stderr


def diagnostics(text):
    """The diagnostics with their notes, without the chain of includes."""
    block = []
    for line in text.splitlines():
        begins = DIAGNOSTIC.match(line)
        if begins or line.startswith(("In file included from", "                 from")):
            if block:
                yield "\n".join(block)
            block = [line] if begins else []
        elif block:
            block.append(line)
    if block:
        yield "\n".join(block)


def compile_all(compiler, files):
    """The diagnostics of all files without duplicates."""
    found = {}
    with tempfile.TemporaryDirectory() as folder, \
            concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        running = {
            pool.submit(compile_file, compiler, file, options, f"{folder}/{number}.s"): file
            for number, (file, options) in enumerate(files.items())}
        for number, done in enumerate(concurrent.futures.as_completed(running), start=1):
            print(f"[{number}/{len(files)}] {running[done]}", flush=True)
            found.update((block.splitlines()[0], block) for block in diagnostics(done.result()))
    return found


def kind(headline):
    named = KIND.search(headline)
    return named.group(1) if named else DIAGNOSTIC.match(headline).group(1)


def main(arguments):
    tree, build = (pathlib.Path(folder).resolve() for folder in arguments[:2])
    files = commands(tree, build)
    unknown = list(unknown_files(tree, files))
    for file in unknown:
        print(f"{file}: not compiled by {build}")
    found = compile_all(arguments[2:], files)
    for headline in sorted(found):
        print(found[headline])
    counts = collections.Counter(kind(headline) for headline in found)
    listed = ", ".join(f"{count} {name}" for name, count in sorted(counts.items()))
    print(f"{len(files)} files: {listed or 'no warnings'}")
    return 1 if found or unknown or not files else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
