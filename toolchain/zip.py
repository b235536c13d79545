"""zip.py FOLDER ZIP TIME: packs a folder under its own name. The same files give the same bytes: sorted
names, one time stamp (seconds since 1970), no owner."""
import pathlib
import sys
import time
import zipfile

folder, target = pathlib.Path(sys.argv[1]), sys.argv[2]
stamp = time.gmtime(int(sys.argv[3]))[:6]

with zipfile.ZipFile(target, "w", zipfile.ZIP_DEFLATED, compresslevel=9) as archive:
    for path in sorted(folder.rglob("*")):
        if path.is_dir():
            continue
        entry = zipfile.ZipInfo(f"{folder.name}/{path.relative_to(folder).as_posix()}", stamp)
        entry.compress_type = zipfile.ZIP_DEFLATED
        entry.external_attr = 0o644 << 16
        archive.writestr(entry, path.read_bytes())
