#!/usr/bin/env python3
"""nuget_test.py NUPKG PACKAGE VERSION PATH...: the parts of the package for .NET and their references to each
other. PACKAGE is the unpacked package that it was made from. No part contains a PATH."""
import fnmatch
import pathlib
import posixpath
import re
import sys
import unittest
import xml.etree.ElementTree as tree
import zipfile

PARTS = """CHANGELOG.md QXBridge.nuspec README.md [Content_Types].xml _rels/.rels build/QXBridge.targets
buildTransitive/QXBridge.targets lib/netstandard2.0/QXBridge.dll lib/netstandard2.0/QXBridge.pdb
lib/netstandard2.0/QXBridge.xml licences/Apache-2.0.txt licences/LLVM-runtimes.txt licences/Qt-GPL-3.txt
licences/Qt-LGPL-3.txt licences/Qt.txt licences/README.md licences/mingw-w64-runtime.txt
runtimes/win-x64/native/QX-Bridge.dll runtimes/win-x64/native/Qt5Core.dll
runtimes/win-x64/native/Qt5Network.dll""".split()
NATIVE = [one for one in PARTS if one.startswith("runtimes/")]
OPC = "{http://schemas.openxmlformats.org/package/2006/"
NUSPEC = "{http://schemas.microsoft.com/packaging/2013/05/nuspec.xsd}"
MSBUILD = "{http://schemas.microsoft.com/developer/msbuild/2003}"


class NugetTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        with zipfile.ZipFile(cls.nupkg) as archive:
            cls.entries = archive.infolist()
            cls.parts = {one.filename: archive.read(one) for one in cls.entries}

    def xml(self, name):
        return tree.fromstring(self.parts[name])

    def properties(self):
        """The name of the part with the core properties, which differs between packages."""
        return next(one for one in self.parts if one.endswith(".psmdcp"))

    def metadata(self):
        return {one.tag.replace(NUSPEC, ""): one for one in self.xml("QXBridge.nuspec").iter()}

    def test_the_parts_are_these(self):
        self.assertEqual(sorted(self.parts), sorted(PARTS + [self.properties()]))
        self.assertEqual(posixpath.dirname(self.properties()), "package/services/metadata/core-properties")

    def test_entries_are_sorted_and_have_one_time(self):
        names = [one.filename for one in self.entries]
        self.assertEqual(names, sorted(set(names)))
        self.assertEqual(len({one.date_time for one in self.entries}), 1)

    def test_every_part_has_its_content_type(self):
        root = self.xml("[Content_Types].xml")
        types = {one.get("Extension"): one.get("ContentType")
                 for one in root.iter(OPC + "content-types}Default")}
        extensions = {one.rpartition(".")[2] for one in self.parts if one != "[Content_Types].xml"}
        self.assertEqual(set(types), extensions)
        office = "application/vnd.openxmlformats-package."
        self.assertEqual(types.pop("rels"), office + "relationships+xml")
        self.assertEqual(types.pop("psmdcp"), office + "core-properties+xml")
        self.assertEqual(set(types.values()), {"application/octet"})

    def test_the_relationships_lead_to_the_manifest_and_the_core_properties(self):
        found = {one.get("Type").rpartition("/")[2]: one.get("Target")
                 for one in self.xml("_rels/.rels").iter(OPC + "relationships}Relationship")}
        self.assertEqual(found, {"manifest": "/QXBridge.nuspec", "core-properties": "/" + self.properties()})

    def test_the_manifest_names_the_package_and_parts_of_it(self):
        found = self.metadata()
        self.assertEqual((found["id"].text, found["version"].text), ("QXBridge", self.version))
        self.assertEqual(pathlib.Path(self.nupkg).name, f"QXBridge.{self.version}.nupkg")
        self.assertEqual(found["license"].get("type"), "file")
        for name in ("license", "readme"):
            self.assertIn(found[name].text, self.parts)
        self.assertEqual(found["group"].get("targetFramework"), ".NETStandard2.0")
        self.assertEqual(list(found["group"]), [])

    def test_the_core_properties_are_those_of_the_manifest(self):
        found = {one.tag.rpartition("}")[2]: one.text for one in self.xml(self.properties())}
        manifest = self.metadata()
        self.assertEqual(found, {"creator": manifest["authors"].text, "identifier": manifest["id"].text,
                                 "description": manifest["description"].text,
                                 "version": manifest["version"].text})

    def test_the_library_is_that_of_the_other_package(self):
        for name in NATIVE:
            with self.subTest(name):
                file = self.package / "bin" / posixpath.basename(name)
                self.assertEqual(self.parts[name], file.read_bytes())

    def test_the_changelog_is_that_of_the_other_package(self):
        self.assertEqual(self.parts["CHANGELOG.md"], (self.package / "CHANGELOG.md").read_bytes())

    def test_a_framework_host_gets_exactly_the_native_files(self):
        group, = self.xml("build/QXBridge.targets").iter(MSBUILD + "ItemGroup")
        self.assertEqual(group.get("Condition"), "'$(TargetFrameworkIdentifier)' == '.NETFramework'")
        item, = group
        pattern = item.get("Include").replace("$(MSBuildThisFileDirectory)", "build/").replace("\\", "/")
        pattern = posixpath.normpath(pattern)
        self.assertEqual([one for one in sorted(self.parts) if fnmatch.fnmatchcase(one, pattern)], NATIVE)
        self.assertEqual({one.tag.replace(MSBUILD, ""): one.text for one in item},
                         {"Link": "%(Filename)%(Extension)", "CopyToOutputDirectory": "PreserveNewest",
                          "Visible": "false"})

    def test_a_host_of_a_host_gets_the_same(self):
        one, = self.xml("buildTransitive/QXBridge.targets").iter(MSBUILD + "Import")
        folder = one.get("Project").replace("$(MSBuildThisFileDirectory)", "buildTransitive/")
        self.assertIn(posixpath.normpath(folder.replace("\\", "/")), self.parts)

    def test_the_documentation_has_what_is_public(self):
        root = self.xml("lib/netstandard2.0/QXBridge.xml")
        self.assertEqual(root.findtext("assembly/name"), "QXBridge")
        names = {one.get("name") for one in root.iter("member")}
        for name in ("T:QXBridge.Session", "M:QXBridge.Session.Load(System.String)",
                     "M:QXBridge.Session.UseFolders(System.String,System.String)",
                     "P:QXBridge.Instance.DisplayName", "F:QXBridge.Result.NoEntry"):
            self.assertIn(name, names)

    def test_the_licences_are_listed_and_those_listed_are_there(self):
        page = self.parts["licences/README.md"].decode()
        for name in re.findall(r"`([\w.-]+\.txt)`", page):
            self.assertIn("licences/" + name, self.parts)
        for name in self.parts:
            if name.startswith("licences/") and name.endswith(".txt"):
                self.assertIn(posixpath.basename(name), page)
        for name in re.findall(r"`([\w/-]+/[\w.-]+\.(?:dll|exe))`", page):
            self.assertIn(name, self.parts)

    def test_no_part_names_a_folder_of_the_machine_that_built_it(self):
        for name, content in self.parts.items():
            for path in self.paths:
                with self.subTest(name):
                    self.assertNotIn(path.encode(), content)


if __name__ == "__main__":
    NugetTest.nupkg, NugetTest.version = sys.argv[1], sys.argv[3]
    NugetTest.package = pathlib.Path(sys.argv[2])
    NugetTest.paths = sys.argv[4:]
    unittest.main(argv=sys.argv[:1])
