#!/usr/bin/env python3
"""npm_registry.py PACKAGE-FOLDER PORT-FILE: serves the package in a folder as an npm registry, without the
files for systems other than 64-bit Windows. Writes the server's port into the file."""

import base64
import hashlib
import http.server
import io
import json
import pathlib
import sys
import tarfile

# The package's files for other systems, and its source.
LEFT_OUT = ("build/koffi/", "vendor/", "src/", "doc/")
KEPT = "build/koffi/win32_x64"


def wanted(member):
    path = member.name.partition("/")[2] + ("/" if member.isdir() else "")
    return member if path.startswith(KEPT) or not path.startswith(LEFT_OUT) or path == LEFT_OUT[0] else None


def packed(folder):
    archive = io.BytesIO()
    with tarfile.open(fileobj=archive, mode="w:gz", compresslevel=1) as tar:
        tar.add(folder, "package", filter=wanted)
    return archive.getvalue()


class Registry(http.server.ThreadingHTTPServer):
    def __init__(self, folder):
        super().__init__(("127.0.0.1", 0), Handler)
        package = json.loads((folder / "package.json").read_text("utf-8"))
        self.archive = packed(folder)
        digest = base64.b64encode(hashlib.sha512(self.archive).digest()).decode()
        address = f"http://127.0.0.1:{self.server_port}/{package['name']}.tgz"
        package["dist"] = {"tarball": address, "integrity": f"sha512-{digest}"}
        self.name = package["name"]
        self.document = json.dumps({"name": self.name, "dist-tags": {"latest": package["version"]},
                                    "versions": {package["version"]: package}}).encode()


class Handler(http.server.BaseHTTPRequestHandler):
    def do_GET(self):
        answers = {f"/{self.server.name}": self.server.document,
                   f"/{self.server.name}.tgz": self.server.archive}
        body = answers.get(self.path)
        self.send_response(404 if body is None else 200)
        self.send_header("Content-Length", str(len(body or b"")))
        self.end_headers()
        self.wfile.write(body or b"")

    def log_message(self, *_):
        pass


if __name__ == "__main__":
    registry = Registry(pathlib.Path(sys.argv[1]))
    pathlib.Path(sys.argv[2]).write_text(f"{registry.server_port}\n", "utf-8")
    registry.serve_forever()
