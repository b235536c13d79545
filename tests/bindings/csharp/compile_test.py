#!/usr/bin/env python3
"""compile_test.py MCS README FILE...: the README's example compiles with the files of the C# binding, and
values of another type than the key's do not."""

import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

HOST = """using System;
using System.Threading.Tasks;
using QXBridge;
static class Host
{
    static async Task Run(Configuration conf)
    {
%s
        await Task.Yield();
    }
    static void Main() { Run(null).Wait(); }
}
"""
FIRST_LINE = HOST.split("%s")[0].count("\n") + 1

RIGHT = """bool adb = conf.Get(Keys.Global.EnableAdbAccess);
int dpi = conf.Get(Keys.Instance("Nougat64").Dpi);
string locale = conf.Get(Keys.Global.Locale);
string[] folders = conf.Get(Keys.Global.SharedFolders);
conf.Set(Keys.Global.EnableAdbAccess, !adb);
conf.Set(Keys.Instance("Nougat64").Dpi, dpi + 1);
conf.Set(Keys.Global.Locale, locale + "x");
conf.Set(Keys.Global.SharedFolders, folders);"""

WRONG = """int adb = conf.Get(Keys.Global.EnableAdbAccess); Console.WriteLine(adb);
bool dpi = conf.Get(Keys.Instance("Nougat64").Dpi); Console.WriteLine(dpi);
string[] locale = conf.Get(Keys.Global.Locale); Console.WriteLine(locale);
string folders = conf.Get(Keys.Global.SharedFolders); Console.WriteLine(folders);
conf.Set(Keys.Global.EnableAdbAccess, 1);
conf.Set(Keys.Instance("Nougat64").Dpi, "320");
conf.Set(Keys.Instance("Nougat64").Dpi, 1L << 40);
conf.Set(Keys.Global.Locale, true);
conf.Set(Keys.Global.SharedFolders, "a,b");
Console.WriteLine(Keys.Global.Locael);
Console.WriteLine(Keys.Global.Dpi);
new Key<bool>("vtr.locale").ToString();"""


def example(readme):
    """The C# of a page, without its line "using QXBridge;"."""
    block = re.search(r"^```csharp\n(.*?)^```$", readme, re.M | re.S)[1]
    return block.replace("using QXBridge;\n", "")


class CompileTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory(prefix="csharp.")
        cls.addClassCleanup(folder.cleanup)
        cls.folder = pathlib.Path(folder.name)
        cls.compile("-target:library", f"-out:{cls.folder}/binding.dll", *cls.files).check_returncode()

    @classmethod
    def compile(cls, *options):
        return subprocess.run([cls.compiler, "-warnaserror", "-langversion:5", "-platform:x64", *options],
                              capture_output=True, encoding="utf-8", check=False)

    def lines_with_errors(self, body):
        """Compiles it as a separate program, which cannot use internal members of the binding."""
        host = self.folder / "host.cs"
        host.write_text(HOST % body, "utf-8")
        done = self.compile(f"-r:{self.folder}/binding.dll", f"-out:{self.folder}/host.exe", str(host))
        found = re.findall(r"host\.cs\((\d+),\d+\): error", done.stdout + done.stderr)
        self.assertEqual(done.returncode == 0, not found, done.stderr)
        return {int(one) - FIRST_LINE + 1 for one in found}

    def test_the_example_of_the_readme(self):
        self.assertEqual(self.lines_with_errors(example(self.readme)), set())

    def test_values_of_a_keys_type(self):
        self.assertEqual(self.lines_with_errors(RIGHT), set())

    def test_values_of_another_type_and_keys_that_do_not_exist(self):
        self.assertEqual(self.lines_with_errors(WRONG), set(range(1, WRONG.count("\n") + 2)))


if __name__ == "__main__":
    CompileTest.compiler = sys.argv[1]
    CompileTest.readme = pathlib.Path(sys.argv[2]).read_text("utf-8")
    CompileTest.files = sys.argv[3:]
    unittest.main(argv=sys.argv[:1])
