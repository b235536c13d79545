#!/usr/bin/env python3
"""readme_test.py MCS README FILE...: the example of the README compiles with the files of the binding."""

import pathlib
import re
import subprocess
import sys
import tempfile

HOST = """using System;
using System.Threading.Tasks;
{usings}
static class Host
{{
    static async Task Run()
    {{
{body}
    }}

    static void Main()
    {{
        Run().Wait();
    }}
}}
"""


def main(compiler, readme, *files):
    blocks = re.findall(r"^```csharp\n(.*?)^```$", pathlib.Path(readme).read_text("utf-8"), re.M | re.S)
    if not blocks:
        return "there is no example"
    for block in blocks:
        usings = re.findall(r"^using \w+;$", block, re.M)
        body = re.sub(r"^using \w+;$", "", block, flags=re.M)
        with tempfile.TemporaryDirectory(prefix="readme.") as folder:
            host = pathlib.Path(folder) / "host.cs"
            host.write_text(HOST.format(usings="\n".join(usings), body=body), "utf-8")
            subprocess.run([compiler, "-warnaserror", "-langversion:5", "-platform:x64", f"-out:{folder}/host.exe",
                            str(host), *files], check=True)
    print(f"{len(blocks)} example compiled")
    return 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
