"""wheel.py FOLDER WHEEL TIME: packs the content of a folder as a wheel, with the list of files and their
digests in its dist-info. The same files give the same bytes: sorted names, one time stamp (seconds
since 1970), no owner."""
import base64
import hashlib
import pathlib
import sys
import time
import zipfile

folder, target = pathlib.Path(sys.argv[1]), sys.argv[2]
stamp = time.gmtime(int(sys.argv[3]))[:6]


def is_info(path):
    return path.relative_to(folder).parts[0].endswith(".dist-info")


def row(name, content):
    digest = base64.urlsafe_b64encode(hashlib.sha256(content).digest()).rstrip(b"=").decode()
    return f"{name},sha256={digest},{len(content)}\n"


def add(archive, name, content):
    entry = zipfile.ZipInfo(name, stamp)
    entry.compress_type = zipfile.ZIP_DEFLATED
    entry.external_attr = 0o644 << 16
    archive.writestr(entry, content)


record = f"{next(folder.glob('*.dist-info')).name}/RECORD"
rows = []
with zipfile.ZipFile(target, "w", zipfile.ZIP_DEFLATED, compresslevel=9) as archive:
    # Installers read the dist-info first. At the end of the archive it can be read without the rest.
    for path in sorted(filter(pathlib.Path.is_file, folder.rglob("*")), key=lambda one: (is_info(one), one)):
        name, content = path.relative_to(folder).as_posix(), path.read_bytes()
        rows.append(row(name, content))
        add(archive, name, content)
    add(archive, record, "".join(rows) + f"{record},,\n")
