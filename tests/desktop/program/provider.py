"""A provider behind a proxy: whatever is to go to its address ends here, under a certificate of its own."""

import ssl
import subprocess

from assistant import Assistant, Handler


class Provider(Assistant):
    """It knows one key, and hears, answers and offers what it is told."""

    def __init__(self, host, key, models, folder):
        self.host, self.key, self.models = host, key, models
        self.certificate, private = folder / "authority.pem", folder / "authority.key"
        subprocess.run(["openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1", "-nodes",
                        "-subj", f"/CN={host}", "-addext", f"subjectAltName=DNS:{host}", "-keyout", private, "-out",
                        self.certificate], check=True, capture_output=True)
        self.tls = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        self.tls.load_cert_chain(self.certificate, private)
        super().__init__(Tunnel)


class Tunnel(Handler):
    protocol_version = "HTTP/1.1"

    def do_CONNECT(self):
        if self.path != f"{self.server.host}:443":
            self.send_error(502)
            return
        self.send_response(200)
        self.end_headers()
        self.close_connection = False
        self.connection = self.server.tls.wrap_socket(self.connection, server_side=True)
        self.rfile, self.wfile = self.connection.makefile("rb"), self.connection.makefile("wb", 0)

    def do_GET(self):
        if self.knows():
            self.reply(200, {"data": [{"id": model} for model in self.server.models]})

    def do_POST(self):
        if self.knows():
            super().do_POST()

    def knows(self):
        known = self.headers["Authorization"] == f"Bearer {self.server.key}"
        if not known:
            self.rfile.read(int(self.headers.get("Content-Length", 0)))
            self.reply(401, {"error": {"message": "no such key"}})
        return known

    def finish(self):
        super().finish()
        self.connection.close()
