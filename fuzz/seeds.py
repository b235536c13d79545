#!/usr/bin/env python3
"""Writes the seeds of the fuzzers: corpus/TARGET/NAME. They are kept in the tree; this is how they
were made, and where more are added."""
import json
import pathlib
import struct

root = pathlib.Path(__file__).resolve().parent / "corpus"


def write(target, name, data):
    folder = root / target
    folder.mkdir(parents=True, exist_ok=True)
    (folder / name).write_bytes(data if isinstance(data, bytes) else data.encode())


# Configuration texts, for the reader and for the store.
KEYS = ["vtr.locale", "vtr.guid", "vtr.next_vm_id", "vtr.enable_adb_access"]
INSTANCE_KEYS = ["dpi", "ram", "cpus", "display_name", "abi_list", "fb_width"]
CONF = {
    "empty": "",
    "one": 'vtr.locale="en"\n',
    "all-globals": "".join(f'{key}="1"\n' for key in KEYS),
    "instance": "".join(f'vtr.instance.Nougat64.{key}="2"\n' for key in INSTANCE_KEYS),
    "two-instances": "".join(f'vtr.instance.{name}.{key}="3"\n'
                             for name in ("Nougat64", "Nougat32_1") for key in INSTANCE_KEYS),
    "interleaved": "".join(f'vtr.instance.{name}.{key}="4"\n'
                           for key in INSTANCE_KEYS for name in ("A", "B", "C")),
    "unknown-keys": 'vtr.old="1"\nother="2"\nvtr.instance.A.old="3"\n',
    "no-last-line-feed": 'vtr.locale="en"',
    "blank-line": 'vtr.locale="en"\n\nvtr.guid="x"\n',
    "only-line-feed": "\n",
    "no-equals": "nonsense\n",
    "ends-at-equals": "vtr.locale=\n",
    "one-behind-equals": "vtr.locale=x\n",
    "two-behind-equals": 'vtr.locale=""\n',
    "no-quotes": "vtr.locale=abc\n",
    "equals-in-value": 'vtr.locale="a=b=c"\n',
    "quotes-in-value": 'vtr.locale="a"b"c"\n',
    "backslashes": 'vtr.locale="C:\\\\Data\\\\"\n',
    "carriage-returns": 'vtr.locale="a"\r\nvtr.guid="b"\r\n',
    "nul-in-value": 'vtr.locale="a\0b"\n',
    "nul-in-key": 'vtr.lo\0cale="a"\n',
    "empty-key": '="a"\n',
    "empty-instance": 'vtr.instance..dpi="1"\n',
    "dots": 'vtr.instance.A.B.dpi="1"\nvtr..="2"\nvtr.instance.="3"\nvtr.instance="4"\n',
    "not-utf8": b'vtr.locale="\xff\xfe"\n',
    "utf8": 'vtr.locale="日本語 é 🎮"\n',
    "repeated": 'vtr.locale="a"\nvtr.locale="b"\nvtr.locale="a"\n',
    "numbers": "".join(f'vtr.next_vm_id="{n}"\n'
                       for n in ("0", "-1", "2147483648", " 12", "0x10", "1e3", "")),
    "longest-line": 'vtr.locale="' + "x" * (4096 - 13) + '"\n',
    "one-too-long": 'vtr.locale="' + "x" * (4096 - 12) + '"\n',
    "longest-written": 'vtr.locale="' + "x" * (4095 - 14) + '"\n',
    "long-key": "k" * 4090 + '="v"\n',
    "many-lines": "".join(f'vtr.instance.I{n}.dpi="{n}"\n' for n in range(60)),
    "defaults-missing": 'vtr.instance.Nougat64.dpi="240"\nvtr.instance.Nougat64_1.dpi="160"\n',
}
for name, text in CONF.items():
    write("conf_text", name, text)
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
}
for key in ("package", "activity", "appLabel", "versionCode", "versionName"):
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


# Event packets.
def text(value, count=None):
    data = value.encode() + b"\0"
    return struct.pack("<I", len(data) if count is None else count) + data


def packet(opcode, payload=b"", reply=0, length=None):
    size = 12 + len(payload) if length is None else length
    return struct.pack("<III", opcode, size, reply) + payload


def number(value):
    return struct.pack("<i", value)


EVENTS = {
    "app-installed": packet(3000, b"".join(map(text, ("Nougat64", "com.a", "com.a.Main", "A")))
                            + number(7) + text("1.0") + text("C:\\a.png") + b"\1"),
    "app-uninstalled": packet(3001, text("Nougat64") + text("com.a")),
    "apk-completed": packet(3002, text("Nougat64") + number(-1) + text("C:\\é.apk")),
    "list-updated": packet(3003),
    "image-progress": packet(3004, text("Nougat64") + number(1) + struct.pack("<d", 62.5)),
    "image-installed": packet(3004, text("Nougat64") + number(2) + struct.pack("<d", 100)),
    "image-nan": packet(3004, text("N") + number(1) + struct.pack("<d", float("nan"))),
    "instance-created": packet(3005, number(0) + text("Nougat64_1")),
    "instance-changed": packet(3006, text("Nougat64")),
    "app-displayed": packet(3007, text("Nougat64") + text("com.a")),
    "accounts-updated": packet(3008, text("Nougat64") + text("a@b") + number(1)),
}
for name, data in EVENTS.items():
    write("event_decode", name, data)
    write("event_decode", f"{name}-cut", data[:-1])
    write("event_decode", f"{name}-more", data + b"more")
for count in (0, 1, 3, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFB, 0xFFFFFFFF):
    write("event_decode", f"count-{count:x}", packet(3006, text("Nougat64", count)))
for opcode in (0, 2000, 2999, 3009, 0x7FFFFFFF, 0xFFFFFFFF):
    write("event_decode", f"opcode-{opcode:x}", packet(opcode, text("x")))
for size in (0, 1, 7, 8, 11):
    write("event_decode", f"size-{size}", packet(3003)[:size])
write("event_decode", "no-nul", packet(3006, struct.pack("<I", 3) + b"abc"))
write("event_decode", "nul-behind", packet(3007, text("ab", 1) + text("c")))


# Streams of packets behind a schedule: how many sizes, the sizes less one, the stream.
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
