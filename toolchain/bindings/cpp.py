"""The generated headers of the C++ interface."""

from typing import List

import tables
from interface import MARK, Interface

VALUES = {"bool": "bool", "i32": "std::int32_t", "i64": "std::int64_t", "string": "std::string",
          "multi-string": "std::vector<std::string>"}
TYPES = {"bool": "Bool", "i32": "I32", "i64": "I64", "string": "String", "multi-string": "MultiString"}


def quoted(text: str) -> str:
    return '"' + text.replace("\\", "\\\\").replace('"', '\\"') + '"'


def guarded(name: str, brief: str, includes: List[str], body: List[str]) -> str:
    guard = f"BRIDGE_{name.upper()}_HPP"
    lines = [f"// {line}" for line in MARK]
    lines += ["/**", f" * @file {name}.hpp", f" * @brief {brief}", " */", f"#ifndef {guard}",
              f"#define {guard}", "", *[f"#include {one}" for one in includes], "",
              "// clang-format off", "namespace bridge {", "", *body, "}  // namespace bridge", "",
              "#endif"]
    return "\n".join(lines) + "\n"


def member(key: tables.Key) -> str:
    """status.adb_port -> status_adb_port"""
    return key.name.replace(".", "_")


def table(name: str, keys: List[tables.Key]) -> List[str]:
    rows = [f"    {{{quoted(one.name)}, KeyType::{TYPES[one.type]}, {quoted(one.default)}, "
            f"{quoted(one.unit)}, {quoted(','.join(one.allowed))}}}," for one in keys]
    return [f"inline constexpr Property {name}[] = {{", *rows, "};"]


def comment(key: tables.Key) -> str:
    """The documentation of a key, which editors show."""
    parts = [key.type]
    parts += [f"unit: {key.unit}"] if key.unit else []
    parts += [f"elements: {', '.join(key.allowed)}"] if key.allowed else []
    parts += [f"default {quoted(key.default)}" if key.default else "no default"]
    return f"/** {'; '.join(parts)} */"


def global_keys(keys: List[tables.Key]) -> List[str]:
    lines = []
    for index, key in enumerate(keys):
        lines += [comment(key), f"inline constexpr GlobalKey<{VALUES[key.type]}> {member(key)}"
                  f"{{detail::kGlobalProperties[{index}]}};"]
    return lines


def instance_keys(keys: List[tables.Key]) -> List[str]:
    starts = [f"          {member(key)}(name, detail::kInstanceProperties[{index}])"
              for index, key in enumerate(keys)]
    lines = ["/** The keys of one instance, made by instance(). */", "struct InstanceKeys {",
             "    /** @param name instance name */",
             "    explicit InstanceKeys(const std::string& name)", "        :" + starts[0][9:] + ",",
             *[f"{one}," for one in starts[1:-1]], starts[-1] + " {}", ""]
    for key in keys:
        lines += [f"    {comment(key)}", f"    InstanceKey<{VALUES[key.type]}> {member(key)};"]
    return [*lines, "};"]


def keys(interface: Interface) -> str:
    of_all = [one for one in interface.keys if one.scope == "global"]
    of_instances = [one for one in interface.keys if one.scope == "instance"]
    images = ", ".join(quoted(one) for one in interface.images)
    body = ["namespace detail {", "", *table("kGlobalProperties", of_all), "",
            *table("kInstanceProperties", of_instances), "",
            f"inline constexpr std::string_view kImages[] = {{{images}}};", "",
            "}  // namespace detail", "", "/** All keys. */", "namespace keys {", "",
            *global_keys(of_all), "", *instance_keys(of_instances), "",
            "/** The keys of one instance: instance(\"Nougat64\").dpi. */",
            "inline InstanceKeys instance(const std::string& name) { return InstanceKeys(name); }",
            "", "}  // namespace keys", ""]
    return guarded("keys", "All keys of the configuration, with the types of their values.",
                   ["<bridge/key.hpp>", "<cstdint>", "<string>", "<string_view>", "<vector>"], body)


def codes(interface: Interface) -> str:
    rows = [f"    {{{one.number}, {quoted(one.name)}, {quoted(one.text)}}},"
            for one in interface.codes]
    body = ["namespace detail {", "", "struct Code {", "    std::int32_t number;",
            "    std::string_view name;", "    std::string_view text;", "};", "",
            "inline constexpr Code kCodes[] = {", *rows, "};", "", "}  // namespace detail", ""]
    return guarded("codes", "The result codes with their names and descriptions.",
                   ["<cstdint>", "<string_view>"], body)
