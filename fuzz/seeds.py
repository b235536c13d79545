#!/usr/bin/env python3
"""Writes the seeds of the fuzzers into corpus/TARGET/NAME. The tree has its output. Add further seeds here."""
import json
import pathlib
import re
import struct

root = pathlib.Path(__file__).resolve().parent / "corpus"


written = {}


def write(target, name, data):
    data = data if isinstance(data, bytes) else data.encode()
    twin = written.setdefault((target, data), name)
    if twin != name:
        raise SystemExit(f"{target}: {name} repeats {twin}")
    folder = root / target
    folder.mkdir(parents=True, exist_ok=True)
    (folder / name).write_bytes(data)


# Configuration texts for reader and writer, with any properties.
def line(key, value):
    return f'{key}="{value}"\n'


TEXT = {
    "empty": "",
    "one": line("vtr.locale", "en"),
    "three": line("a", "1") + line("b", "2") + line("c", "3"),
    "no-last-line-feed": 'vtr.locale="en"',
    "blank-line": line("vtr.locale", "en") + "\n" + line("vtr.guid", "x"),
    "blank-first": "\n" + line("vtr.locale", "en"),
    "blank-last": line("vtr.locale", "en") + "\n",
    "only-line-feed": "\n",
    "no-equals": "nonsense\n",
    "no-equals-after-entries": line("a", "1") + "nonsense\n" + line("b", "2"),
    "one-character": "x",
    "only-equals": "=",
    "many-equals": "====\n",
    "ends-at-equals": "vtr.locale=\n",
    "ends-at-equals-after-entries": line("a", "1") + "b=\n" + line("c", "3"),
    "one-after-equals": "vtr.locale=x\n",
    "two-after-equals": 'vtr.locale=""\n',
    "three-after-equals": 'vtr.locale="""\n',
    "no-quotes": "vtr.locale=abc\n",
    "blanks-around-equals": 'vtr.locale = "abc"\n',
    "equals-in-value": line("vtr.locale", "a=b=c"),
    "quotes-in-value": line("vtr.locale", 'a"b"c'),
    "line-feed-in-value": line("vtr.locale", "a\nb=c"),
    "backslashes": line("vtr.locale", "C:\\\\Data\\\\"),
    "carriage-returns": 'vtr.locale="a"\r\nvtr.guid="b"\r\n',
    "only-carriage-returns": 'vtr.locale="a"\rvtr.guid="b"\r',
    "nul-in-value": line("vtr.locale", "a\0b"),
    "nul-first-in-value": line("vtr.locale", "\0b"),
    "nul-for-the-quotes": "vtr.locale=\0a\0\n",
    "nul-before-line-feed": line("vtr.locale", "a\0b\nc"),
    "nul-in-key": line("vtr.lo\0cale", "a"),
    "empty-key": line("", "a"),
    "not-utf8": b'vtr.locale="\xff\xfe"\n',
    "utf8": line("vtr.locale", "日本語 é 🎮"),
    "bom": b'\xef\xbb\xbfvtr.locale="a"\n',
    # The limits of reading, 4096 bytes without the line feed, and of writing, 4095 bytes with it.
    "longest-line": 'vtr.locale="' + "x" * (4096 - 13) + '"\n',
    "one-too-long": 'vtr.locale="' + "x" * (4096 - 12) + '"\n',
    "longest-written": 'vtr.locale="' + "x" * (4095 - 14) + '"\n',
    "one-too-long-to-write": 'vtr.locale="' + "x" * (4096 - 14) + '"\n',
    "long-but-short-to-write": 'vtr.locale="a\0' + "x" * 4000 + '"\n',
    "longest-key-written": "k" * (4095 - 5) + '="v"\n',
    "equals-in-the-last-place": "k" * 4095 + "=\n",
    "equals-after-the-last-place": "k" * 4096 + "=\n",
    "too-long-after-entries": line("a", "1") + "k" * 5000 + '="v"\n' + line("b", "2"),
}
for name, text in TEXT.items():
    write("conf_text", name, text)


# Configuration files for the store, with properties of the catalogue.
KEYS = ["vtr.locale", "vtr.guid", "vtr.next_vm_id", "vtr.enable_adb_access"]
INSTANCE_KEYS = ["dpi", "ram", "cpus", "display_name", "abi_list", "fb_width"]


def instance_key(instance, name="dpi"):
    return f"vtr.instance.{instance}.{name}"


def lines(keys, value):
    return "".join(line(key, value) for key in keys)


BEFORE, AFTER = line("vtr.guid", "before"), line("vtr.guid", "behind")
FILES = {
    "globals": lines(KEYS, "1"),
    "globals-backwards": lines(reversed(KEYS), "1"),
    "instance": lines([instance_key("Nougat64", key) for key in INSTANCE_KEYS], "2"),
    "two-instances": lines([instance_key(name, key) for name in ("Nougat64", "Nougat32_1")
                            for key in INSTANCE_KEYS], "3"),
    "interleaved": lines([instance_key(name, key) for key in INSTANCE_KEYS
                          for name in ("A", "B", "C")], "4"),
    "many-instances": "".join(line(instance_key(f"I{n}"), n) for n in range(20)),
    "names-that-begin-alike": lines(map(instance_key, ("A", "AB", "A-", "A0", "a")), "5"),
    "instance-before-global": line(instance_key("A"), "6") + line("vtr.guid", "7"),
    "defaults": line(instance_key("A"), "240") + line("vtr.log_levels", "*:I"),
    "default-emptied": line(instance_key("A"), "") + line("vtr.log_levels", ""),
    "empty-instance": line(instance_key(""), "1"),
    "utf8-instance": line(instance_key("é日"), "1"),
    "blank-in-instance": line(instance_key("a b"), "1"),
    "line-in-instance": line(instance_key('a"b'), "1"),
    "repeated": lines(["vtr.guid"], "a") + lines(["vtr.guid"], "b") + lines(["vtr.guid"], "a"),
    "repeated-in-instance": line(instance_key("A"), "1") + line(instance_key("B"), "2")
                            + line(instance_key("A"), "3"),
    "numbers": "".join(line("vtr.next_vm_id", n)
                       for n in ("0", "-1", "2147483648", " 12", "0x10", "1e3", "")),
    "carriage-returns": line("vtr.guid", "a").replace("\n", "\r\n"),
    "nul-in-value": line("vtr.guid", "a\0b"),
    "no-last-line-feed": BEFORE + 'vtr.country="x"',
    # Values that every run changes.
    "changed-already": line("vtr.locale", "fuzz"),
    "all-changed-already": line("vtr.locale", "fuzz")
                           + line(instance_key("Fuzz", "astc_decoding_mode"), "fuzz"),
    "changed-instance-known": line(instance_key("Fuzz"), "7"),
    "changed-twice": line("vtr.locale", "fuzz") + line("vtr.locale", "x"),
    # Unknown keys between known ones.
    **{f"unknown-{name}": BEFORE + line(key, "1") + AFTER for name, key in {
        "global": "vtr.unknown",
        "other": "other",
        "empty": "",
        "prefix": "vtr.",
        "two-dots": "vtr..",
        "capitals": "VTR.locale",
        "capital": "vtr.Locale",
        "blank-after": "vtr.locale ",
        "nul-after": "vtr.locale\0",
        "property-as-global": "vtr.dpi",
        "global-of-instance": instance_key("A", "locale"),
        "of-instance": instance_key("A", "old"),
        "empty-of-instance": instance_key("A", ""),
        "of-dotted-instance": instance_key("A.B"),
        "instance": "vtr.instance",
        "instance-prefix": "vtr.instance.",
        "no-second-dot": "vtr.instance.dpi",
    }.items()},
    "unknown-that-ends-at-equals": BEFORE + "vtr.unknown=\n",
    "ends-at-equals": BEFORE + "vtr.country=\n" + AFTER,
    "unknown-before-ends-at-equals": line("vtr.unknown", "1") + "vtr.country=\n",
    "malformed": BEFORE + "vtr.country\n" + AFTER,
    # Entries that load but must not be written, and entries that a later line or the commit corrects.
    "too-long-to-write": 'vtr.guid="' + "x" * (4095 - 11) + '"\n',
    "longest-written": 'vtr.guid="' + "x" * (4095 - 12) + '"\n',
    "too-long-then-short": 'vtr.guid="' + "x" * (4095 - 11) + '"\n' + AFTER,
    "too-long-then-changed": 'vtr.locale="' + "x" * (4096 - 13) + '"\n',
    "longest-instance": line(instance_key("n" * 4051), "1"),
    "instance-too-long-for-a-default": line(instance_key("n" * 4052), "1"),
    "nul-in-instance": line(instance_key("a\0b"), "1"),
    "nul-in-instance-and-too-long-after": line(instance_key("a\0b"), "1")
                                           + 'vtr.vantrel_account_id="' + "x" * 4070 + '"\n',
    "too-long-before-nul-in-instance": 'vtr.guid="' + "x" * (4095 - 11) + '"\n'
                                       + line(instance_key("a\0b"), "1"),
}
for name, text in FILES.items():
    write("conf_store", name, text)


# App caches and sync lists.
def app(**changes):
    plain = {"package": "com.a", "activity": "com.a.Main", "appLabel": "A", "versionCode": 1,
             "versionName": "1.0"}
    plain.update(changes)
    return {key: value for key, value in plain.items() if value is not ...}


JSON = {
    "empty-array": [],
    "empty-object": {},
    "one-app": [app()],
    "two-apps": [app(), app(package="com.b")],
    "same-package": [app(appLabel="x"), app(appLabel="y")],
    "sync": {"apps": [app(), app(package="com.b")]},
    "sync-empty": {"apps": []},
    "sync-wrong": {"apps": {}},
    "sync-other": {"other": [app()]},
    "with-icon": [app(iconFileName="com.a.png")],
    "extra": [app(more=[1, 2, {"x": None}])],
    "numbers-in-array": [1, 2.5, -3],
    "nested": [[[[app()]]]],
    "null-element": [None],
    "app-then-number": [app(), 5],
    "versions": [app(package=str(n), versionCode=n)
                 for n in (0, -1, 2147483647, 2147483648, -2147483649, 1.9, -1.9, 1e300, 1e-300)],
    "text-version": [app(versionCode="1")],
    "escapes": [app(appLabel='"\\/\b\f\n\r\t\x01\x7f')],
    "unicode": [app(appLabel="日本語 é 🎮", package="com.é")],
    "empty-texts": [app(package="", activity="", appLabel="", versionName="")],
    "long-text": [app(appLabel="x" * 3000)],
    "capital-key": [{**app(package=...), "Package": "com.a"}],
    "flaw-after-apps": [app(), app(package="com.b"), app(activity=...), app(package="com.c")],
    "number-after-flaw": [app(versionCode="1"), 5],
    "backwards": [app(package=name) for name in ("c", "b", "a")],
    "sync-with-flaw": {"apps": [app(), app(activity=None)]},
    "sync-with-number": {"apps": [app(), 5]},
    "sync-null": {"apps": None},
    "sync-twice-nested": {"apps": {"apps": [app()]}},
    "types": [app(versionCode=value) for value in (1, True, "1", [], {})],
    "texts-of-types": [app(appLabel=value) for value in ("", False, 1, {}, None)],
}
for number in (2147483646.9, 2147483647.5, -2147483648.9, -0.0, 1e19):
    JSON[f"version-{number}"] = [app(versionCode=number)]
MEMBERS = ("package", "activity", "appLabel", "versionCode", "versionName")
for key, next_key in zip(MEMBERS, MEMBERS[1:]):
    JSON[f"without-{key}-and-{next_key}"] = [app(**{key: ..., next_key: ...})]
for key in MEMBERS:
    JSON[f"without-{key}"] = [app(**{key: ...})]
    JSON[f"null-{key}"] = [app(**{key: None})]
    JSON[f"mistyped-{key}"] = [app(**{key: [1]})]
for name, value in JSON.items():
    write("appc_json", name, json.dumps(value, ensure_ascii=False))
write("appc_json", "indented", json.dumps([app()], indent=4))
write("appc_json", "ascii-escapes", json.dumps([app(appLabel="日本 🎮 \0")]))
write("appc_json", "lone-surrogate", json.dumps([app()]).replace('"A"', '"\\ud800x\\udc00"'))
write("appc_json", "cut", json.dumps([app()])[:-3])
write("appc_json", "not-utf8", b'[{"package": "\xff"}]')
write("appc_json", "bom", b"\xef\xbb\xbf[]")
write("appc_json", "trailing", "[] x")
write("appc_json", "blanks", " \t\r\n[ ] \n")
write("appc_json", "deep", "[" * 600 + "]" * 600)
write("appc_json", "same-key", json.dumps([app()]).replace('"appLabel"', '"package"'))
write("appc_json", "same-list", '{"apps": [], "apps": 1}')


# Event packets.
def text(value, count=None):
    data = value.encode() + b"\0"
    return struct.pack("<I", len(data) if count is None else count) + data


def packet(opcode, payload=b"", reply=0, length=None):
    size = 12 + len(payload) if length is None else length
    return struct.pack("<III", opcode, size, reply) + payload


def number(value):
    return struct.pack("<i", value)


def double(value):
    return struct.pack("<d", value)


def example(fields):
    """The payload of the fields of tests/support/event_table.h."""
    layouts = {"TEXT": lambda word: text(word[1:-1].replace("\\\\", "\\")),
               "I32": lambda word: number(int(word)), "DOUBLE": lambda word: double(float(word)),
               "FLAG": lambda word: bytes([int(word)])}
    found = re.findall(r'(TEXT|I32|DOUBLE|FLAG)\(\w+, ("(?:[^"\\]|\\.)*"|[-\d.]+)\)', fields)
    return b"".join(layouts[kind](word) for kind, word in found)


def examples():
    """A packet for each event, by name."""
    table = (root.parents[1] / "tests/support/event_table.h").read_text(encoding="utf-8")
    table = re.sub(r"\s*\\\n\s*", " ", table)
    fields = dict(re.findall(r"#define FIELDS_(\w+)\(TEXT, [^)]*\) (.*)", table))
    rows = re.findall(r'EVENT\((\d+), \w+, (\w+), \w+, "([\w-]+)"\)', table)
    return {name: packet(int(opcode), example(fields[slot])) for opcode, slot, name in rows}


EVENTS = {
    **examples(),
    "image-installed": packet(3004, text("Nougat64") + number(2) + double(100)),
    "image-nan": packet(3004, text("N") + number(1) + double(float("nan"))),
}
for name, data in EVENTS.items():
    write("event_decode", name, data)
    write("event_decode", f"{name}-cut", data[:-1])
    write("event_decode", f"{name}-more", data + b"more")
for count in (0, 1, 3, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFB, 0xFFFFFFFF):
    write("event_decode", f"count-{count:x}", packet(3006, text("Nougat64", count)))
for opcode in (0, 2000, 2999, 3000 + len(examples()), 0x7FFFFFFF, 0xFFFFFFFF):
    write("event_decode", f"opcode-{opcode:x}", packet(opcode, text("x")))
for size in (0, 1, 7, 8, 10):
    write("event_decode", f"size-{size}", packet(3003)[:size])
write("event_decode", "no-nul", packet(3006, struct.pack("<I", 3) + b"abc"))
write("event_decode", "nul-after", packet(3007, text("ab", 1) + text("c")))


# A schedule of deliveries and a stream of packets: the number of sizes, each size minus one, the stream.
def stream(sizes, *packets):
    return bytes([len(sizes)]) + bytes(size - 1 for size in sizes) + b"".join(packets)


ALL = list(EVENTS.values())
SCHEDULES = {"whole": [], "bytes": [1], "header": [12], "below-header": [11], "odd": [5, 7, 1],
             "large": [256, 3], "thirteen": [13]}
for name, sizes in SCHEDULES.items():
    write("packet_assembly", f"one-{name}", stream(sizes, packet(1, b"abcd", 8)))
    write("packet_assembly", f"three-{name}",
          stream(sizes, packet(1), packet(2, b"x" * 40, 3), packet(3, b"", 5)))
    write("packet_assembly", f"events-{name}", stream(sizes, *ALL))
write("packet_assembly", "partial", stream([4], packet(1, b"abc"), packet(2, b"abcdef")[:-2]))
write("packet_assembly", "short-header", stream([], packet(1)[:11]))
for length in (0, 11, 13, 0x7FFFFFFF, 0x80000000, 0x8000000B, 0x8000000C, 0xFFFFFFFF):
    write("packet_assembly", f"length-{length:x}",
          stream([], packet(1), packet(2, b"abc", length=length)))
# A fatal header in one or several deliveries, after a complete or an incomplete packet.
FATAL = packet(2, length=0x80000000 + 12)
write("packet_assembly", "fatal-alone", stream([], FATAL))
write("packet_assembly", "fatal-in-bytes", stream([1], packet(1, b"ab", 4), FATAL))
write("packet_assembly", "fatal-in-halves", stream([6], FATAL, packet(1)))
write("packet_assembly", "fatal-after-three", stream([], *ALL[:3], FATAL, *ALL[3:]))
write("packet_assembly", "fatal-without-its-end", stream([], packet(1), FATAL[:11]))
write("packet_assembly", "nearly-fatal", stream([9], packet(2, b"abc", length=0x8000000B)))
write("packet_assembly", "large-reply", stream([20], packet(1, b"abc", 0xFFFFFFFF)))
write("packet_assembly", "long", stream([100], packet(1, b"y" * 3000, 1), packet(2)))


# Level specifications.
LEVELS = ["", "*:V", "CONF:D", "CONF:Debug UTL:W", "*:E CONF:V", "CONF:V *:W CONF:D", "XMEM:D",
          "CONF", "CONF:", "CONF:Q", "CONF:d", ":", ":E", "CONF:D:V", "  CONF:D   UTL:E ",
          "NOTAG:V", "conf:V", "CONF:E\tUTL:V", "*", "*:", "CONF:DUTL:V", "CONF:D BAD UTL:V",
          "XLOG:V *:V", "AGA:E XTIMER:V", "CONF\0:V", "CONF :V", "é:V", "CONF:é", "**:V",
          "BRIDGE:I IPC:I MIM:I PLR:I"]
for index, levels in enumerate(LEVELS):
    write("log_levels", f"{index:02}", levels)


# Argument lists.
ARGUMENTS = [[""], ["Nougat64"], ["a b"], ['say "hi"'], ["C:\\x"], ['a\\"b'], ["C:\\dir\\"], ["\\"],
             ["\\\\"], ['"'], ['""'], ["a\tb"], ["a\nb"], ["é日"], ["🎮"],
             ["C:\\Program Files\\QX-Player.exe", "--instance", "Nougat64"],
             ["p", "", ""], ["", ""], ["p", " ", "  "], ["p", '"', "\\", '\\"'],
             ["p", "--cmd", 'launchApp {"package":"com.a"}'], ["p", "^%PATH%&|<>"],
             ["'single'"], ["ends with blank "], [" starts with blank"], ["-", "--", "/?"],
             ["x" * 500], ['"' * 100], ["\\" * 99 + '"']]
for index, arguments in enumerate(ARGUMENTS):
    write("quoting", f"{index:02}", "\0".join(arguments))
