"""pack.py FOLDER NUPKG TIME: packs a folder with a .nuspec as a NuGet package. The same files give the same
bytes: sorted names, one time stamp (seconds since 1970), no owner."""
import hashlib
import pathlib
import sys
import time
import xml.etree.ElementTree
import zipfile
from xml.sax.saxutils import escape

XML = '<?xml version="1.0" encoding="utf-8"?>\n'
PACKAGE = "http://schemas.openxmlformats.org/package/2006"
TYPES = {"rels": "application/vnd.openxmlformats-package.relationships+xml",
         "psmdcp": "application/vnd.openxmlformats-package.core-properties+xml"}


def metadata(nuspec):
    """The elements of a .nuspec with a text."""
    root = xml.etree.ElementTree.fromstring(nuspec)
    return {one.tag.split("}")[1]: one.text for one in root.iter() if one.text}


def relationship(number, kind, target):
    return f'  <Relationship Type="{kind}" Target="/{target}" Id="R{number}" />\n'


def relationships(nuspec, properties):
    return (XML + f'<Relationships xmlns="{PACKAGE}/relationships">\n'
            + relationship(1, "http://schemas.microsoft.com/packaging/2010/07/manifest", nuspec)
            + relationship(2, f"{PACKAGE}/relationships/metadata/core-properties", properties)
            + "</Relationships>\n")


def content_types(names):
    """The extension of a part, or the whole name if it has none."""
    extensions = sorted({pathlib.PurePosixPath(name).suffix[1:] for name in names} - {""})
    others = [name for name in names if not pathlib.PurePosixPath(name).suffix]
    lines = [f'  <Default Extension="{one}" ContentType="{TYPES.get(one, "application/octet")}" />\n'
             for one in extensions]
    lines += [f'  <Override PartName="/{one}" ContentType="application/octet" />\n' for one in others]
    return XML + f'<Types xmlns="{PACKAGE}/content-types">\n' + "".join(lines) + "</Types>\n"


def core_properties(of):
    return (XML + f'<coreProperties xmlns="{PACKAGE}/metadata/core-properties"'
            ' xmlns:dc="http://purl.org/dc/elements/1.1/">\n'
            f'  <dc:creator>{escape(of["authors"])}</dc:creator>\n'
            f'  <dc:description>{escape(of["description"])}</dc:description>\n'
            f'  <dc:identifier>{escape(of["id"])}</dc:identifier>\n'
            f'  <version>{escape(of["version"])}</version>\n'
            '</coreProperties>\n')


def parts(folder):
    """The parts of the package by name: the folder's files and the package's metadata."""
    found = {path.relative_to(folder).as_posix(): path.read_bytes()
             for path in folder.rglob("*") if path.is_file()}
    nuspec = next(name for name in found if "/" not in name and name.endswith(".nuspec"))
    of = metadata(found[nuspec])
    identity = hashlib.sha256(f'{of["id"]} {of["version"]}'.encode()).hexdigest()[:32]
    properties = f"package/services/metadata/core-properties/{identity}.psmdcp"
    found[properties] = core_properties(of).encode()
    found["_rels/.rels"] = relationships(nuspec, properties).encode()
    # ".rels" is an extension in the packaging conventions, but not for pathlib.
    found["[Content_Types].xml"] = content_types(
        sorted(set(found) - {"_rels/.rels"}) + ["all.rels"]).encode()
    return found


def main(folder, target, stamp):
    with zipfile.ZipFile(target, "w", zipfile.ZIP_DEFLATED, compresslevel=9) as archive:
        for name, content in sorted(parts(pathlib.Path(folder)).items()):
            entry = zipfile.ZipInfo(name, time.gmtime(int(stamp))[:6])
            entry.compress_type = zipfile.ZIP_DEFLATED
            entry.external_attr = 0o644 << 16
            archive.writestr(entry, content)


main(*sys.argv[1:])
