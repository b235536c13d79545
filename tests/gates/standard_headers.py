#!/usr/bin/env python3
"""standard_headers.py TREE: a file includes the standard headers of the names that it uses.

A .cpp file inherits the includes of its own header. A file that includes tests/support/TestHeaders.h,
directly or through headers of the tests, inherits the includes of that file. An unknown name in `std`
is a fault; add it to the tables below.
"""

import pathlib
import re
import sys
from dataclasses import dataclass

sys.dont_write_bytecode = True  # leaves no files in the tree
import includes

# The names in `std` that each header declares, as far as the code uses them. A name can be declared by
# several headers.
CPP = {
    "algorithm": "all_of any_of clamp copy count count_if equal fill find find_if is_sorted "
                 "lower_bound max max_element min next_permutation none_of remove remove_if replace "
                 "replace_if reverse sort stable_sort",
    "array": "array begin data empty end get size",
    "atomic": "atomic atomic_thread_fence memory_order_acquire memory_order_relaxed "
              "memory_order_release",
    "charconv": "from_chars to_chars",
    "chrono": "chrono",
    "condition_variable": "condition_variable condition_variable_any cv_status",
    "deque": "deque",
    "exception": "current_exception exception exception_ptr rethrow_exception terminate",
    "filesystem": "filesystem",
    "fstream": "ifstream ofstream",
    "functional": "cref function hash less ref",
    "future": "async future future_status launch promise",
    "initializer_list": "initializer_list",
    "iomanip": "setfill setw",
    "ios": "ios streamsize",
    "iostream": "cerr cin cout",
    "istream": "istream",
    "iterator": "back_inserter begin data distance empty end istream_iterator istreambuf_iterator "
                "make_move_iterator next prev size",
    "limits": "numeric_limits",
    "list": "list",
    "map": "map multimap",
    "memory": "atomic_load atomic_store make_shared make_unique shared_ptr unique_ptr weak_ptr",
    "mutex": "call_once lock_guard mutex once_flag recursive_mutex scoped_lock unique_lock",
    "new": "bad_alloc nothrow nothrow_t",
    "numeric": "accumulate iota",
    "optional": "nullopt optional",
    "ostream": "endl ostream",
    "random": "mt19937",
    "ratio": "nano ratio",
    "regex": "regex regex_match regex_replace regex_search smatch sregex_iterator",
    "set": "multiset set",
    "sstream": "istringstream ostringstream stringstream",
    "stdexcept": "invalid_argument length_error logic_error out_of_range runtime_error",
    "string": "begin char_traits data empty end getline size stod stoi stol stoll stoul stoull string to_string "
              "to_wstring u16string wstring",
    "string_view": "begin data empty end size string_view string_view_literals wstring_view",
    "system_error": "errc error_code system_error",
    "thread": "this_thread thread",
    "tuple": "apply forward_as_tuple get make_tuple tie tuple",
    "type_traits": "decay_t enable_if_t is_convertible_v is_same_v is_trivially_copyable_v "
                   "remove_pointer_t void_t",
    "unordered_map": "unordered_map",
    "unordered_set": "unordered_set",
    "utility": "as_const declval exchange forward get index_sequence index_sequence_for "
               "make_index_sequence make_pair move pair swap",
    "variant": "get get_if holds_alternative monostate variant visit",
    "vector": "begin data empty end size vector",
}

# The same for the headers of C: "stdio" is <cstdio>, or <stdio.h> in C.
C = {
    "assert": "assert",
    "ctype": "isalnum toupper",
    "errno": "errno",
    "limits": "INT_MAX INT_MIN",
    "locale": "setlocale LC_ALL",
    "setjmp": "jmp_buf longjmp setjmp",
    "signal": "raise signal SIGABRT",
    "stdarg": "va_arg va_copy va_end va_list va_start",
    "stddef": "max_align_t nullptr_t offsetof ptrdiff_t size_t",
    "stdint": "int8_t int16_t int32_t int64_t intptr_t uint8_t uint16_t uint32_t uint64_t uintptr_t "
              "INT32_MAX INT32_MIN INT64_MAX INT64_MIN SIZE_MAX UINT32_MAX UINT64_MAX",
    "stdio": "fclose fflush fgets fopen fprintf fputs fread fwrite printf puts remove rename setvbuf "
             "size_t snprintf sscanf vfprintf vprintf vsnprintf stderr stdin stdout FILE",
    "stdlib": "abort abs atexit atof atoi atoll calloc exit free getenv malloc qsort realloc size_t "
              "strtod strtol strtoul strtoull _Exit EXIT_FAILURE EXIT_SUCCESS",
    "string": "memchr memcmp memcpy memmove memset size_t strchr strcmp strcpy strerror strlen "
              "strncmp strrchr strstr",
    "time": "size_t strftime time time_t tm",
    "wchar": "size_t swprintf wcscmp wcslen",
}

# The headers that a header includes according to the standard.
INCLUDED = {"iostream": ("ios", "istream", "ostream")}


def by_name(*tables):
    """The headers that declare each name."""
    headers = {}
    for header, names in [row for table in tables for row in table.items()]:
        for name in names.split():
            headers.setdefault(name, []).append(header)
    return headers


IN_STD = by_name({f"c{header}": names for header, names in C.items()}, CPP)
IN_C = by_name({f"{header}.h": names for header, names in C.items()})
MACROS = [name for name in IN_C if re.fullmatch(
    r"[A-Z][A-Z0-9_]+|assert|errno|offsetof|setjmp|stderr|stdin|stdout|va_(?!list)\w+", name)]
TYPES = [name for name in IN_C if re.fullmatch(r"\w+_t|FILE|jmp_buf|va_list", name)]

INCLUDE = re.compile(
    r'^[ \t]*#[ \t]*include[ \t]*(?:<(?P<standard>[^>\n]+)>|"(?P<quoted>[^"\n]+)")', re.M)
NO_CODE = re.compile(
    r"""//[^\n]*|/\*.*?\*/|R"(\w*)\(.*?\)\1"|"(?:[^"\\\n]|\\.)*"|(?<!\w)'(?:[^'\\\n]|\\.)*'""", re.S)
# In C++, names of C need the namespace, because the code has functions with such names too.
USE_IN_CPP = re.compile(rf"\bstd::(?P<name>\w+)|(?<![\w.:>])(?P<plain>{'|'.join(MACROS)})\b")
USE_IN_C = re.compile(
    rf"(?<![\w.>])(?P<plain>(?:{'|'.join(IN_C)})(?=\()|(?:{'|'.join(MACROS + TYPES)})\b)")


@dataclass
class File:
    standard: set  # headers in brackets
    quoted: list
    uses: list  # (line, name as written, headers of which one suffices)


def blank(match):
    """The line ends only."""
    return "\n" * match[0].count("\n") or " "


def read_file(path):
    text = path.read_text(encoding="utf-8")
    directives = list(INCLUDE.finditer(text))
    standard = {match["standard"] for match in directives if match["standard"]}
    for header in list(standard):
        standard.update(INCLUDED.get(header, ()))
    code = NO_CODE.sub(blank, INCLUDE.sub(blank, text))
    uses = {}
    for match in (USE_IN_C if path.suffix == ".c" else USE_IN_CPP).finditer(code):
        uses.setdefault(match[0], (code.count("\n", 0, match.start()) + 1, match))
    return File(standard, [match["quoted"] for match in directives if match["quoted"]],
                [(line, name, needed(match, path.suffix)) for name, (line, match) in uses.items()])


def needed(match, suffix):
    """The headers that declare a name; None for an unknown name."""
    if match.groupdict().get("name"):
        return IN_STD.get(match["name"])
    name = match["plain"]
    return IN_C[name] if suffix == ".c" else IN_STD[name] + IN_C[name]


class Gate:
    def __init__(self, root):
        self.root = pathlib.Path(root)
        self.shared = self.root / "tests/support/TestHeaders.h"
        self.files = {path: read_file(path) for path in includes.source_files(self.root)}

    def included(self, path):
        """The standard headers that a file, its own header and the shared test headers include."""
        own = self.own_header(path)
        headers = self.files[path].standard | (self.files[own].standard if own else set())
        if self.shares(path):
            headers |= self.files[self.shared].standard
        return headers

    def shares(self, path):
        """Whether the file includes the shared test headers."""
        if self.shared not in self.files or self.shared.parents[1] not in path.parents:
            return False
        places = [folder / name for name in self.files[path].quoted
                  for folder in (path.parent, self.shared.parents[1], path.parent.parent)]
        return self.shared in places or any(
            self.shares(place) for place in places if place in self.files)

    def own_header(self, path):
        """The own header of a source: IpcName.h for IpcNameWinnt.cpp, if the source includes it."""
        stems = {path.stem, includes.SYSTEM.sub("", path.stem)}
        names = [name for name in self.files[path].quoted if pathlib.PurePath(name).stem in stems]
        places = [path.parent / name for name in names]
        places += [other for name in names for other in self.files
                   if other.as_posix().endswith(f"/{name}")]
        return next((place for place in places if place in self.files), None)

    def check(self):
        """The faults, one line each."""
        return [fault for path in self.files for fault in self.faults_of(path)]

    def faults_of(self, path):
        included = self.included(path)
        for line, name, headers in self.files[path].uses:
            place = f"{path.relative_to(self.root).as_posix()}:{line}: {name}"
            if headers is None:
                yield f"{place} is not in the tables of tests/gates/standard_headers.py"
            elif not included.intersection(headers):
                yield f"{place} needs {' or '.join(f'<{header}>' for header in headers)}"


def main(root):
    gate = Gate(root)
    faults = gate.check()
    for fault in faults:
        print(fault)
    uses = sum(len(file.uses) for file in gate.files.values())
    print(f"{uses} names in {len(gate.files)} files")
    if not uses:
        print("nothing to compare")
    return 1 if faults or not uses else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
