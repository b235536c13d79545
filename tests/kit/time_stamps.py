"""time_stamps.py FOLDER: a time-stamp service (RFC 3161) on this machine. It answers with `openssl ts` and
the folder's tsa.pem and tsa.key, prints its address, and ends with its standard input."""
import http.server
import pathlib
import subprocess
import sys
import threading

FOLDER = pathlib.Path(sys.argv[1])
CONFIGURATION = f"""[tsa]
default_tsa = ours
[ours]
serial = {FOLDER}/serial
default_policy = 1.2.3.4
digests = sha256, sha384, sha512
signer_digest = sha256
accuracy = secs:1
ess_cert_id_alg = sha256
"""


class Service(http.server.BaseHTTPRequestHandler):
    def do_POST(self):
        query, reply = FOLDER / "query.tsq", FOLDER / "reply.tsr"
        query.write_bytes(self.rfile.read(int(self.headers["Content-Length"])))
        subprocess.run(["openssl", "ts", "-reply", "-config", FOLDER / "tsa.conf", "-section", "ours", "-queryfile",
                        query, "-signer", FOLDER / "tsa.pem", "-inkey", FOLDER / "tsa.key", "-out", reply],
                       check=True, stderr=subprocess.DEVNULL)
        self.send_response(200)
        self.send_header("Content-Type", "application/timestamp-reply")
        self.end_headers()
        self.wfile.write(reply.read_bytes())

    def log_message(self, *_):
        pass


(FOLDER / "tsa.conf").write_text(CONFIGURATION)
(FOLDER / "serial").write_text("01\n")
server = http.server.HTTPServer(("127.0.0.1", 0), Service)
threading.Thread(target=server.serve_forever, daemon=True).start()
print(f"http://127.0.0.1:{server.server_port}", flush=True)
sys.stdin.read()
