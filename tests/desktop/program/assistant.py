"""The server behind the service: it hears what it is told to hear, and answers as an assistant."""

import http.server
import json
import threading


class Assistant(http.server.ThreadingHTTPServer):
    daemon_threads = True

    def __init__(self, handler=None):
        super().__init__(("127.0.0.1", 0), handler or Handler)
        self.spoken = ""  # what the next recordings say
        self.has_heard = threading.Event()  # until then it is still listening to them
        self.has_heard.set()
        self.answer = ""
        self.status = 200
        self.recordings = []  # the forms that were sent
        self.questions = []  # (authorization, body)
        self.address = f"http://127.0.0.1:{self.server_port}/v1"
        threading.Thread(target=self.serve_forever, daemon=True).start()


class Handler(http.server.BaseHTTPRequestHandler):
    def do_POST(self):
        desk = self.server
        body = self.rfile.read(int(self.headers["Content-Length"]))
        if self.path.endswith("/audio/transcriptions"):
            desk.recordings.append(body)
            desk.has_heard.wait(30)
            self.reply(200, {"text": desk.spoken})
        else:
            desk.questions.append((self.headers["Authorization"], json.loads(body)))
            message = {"role": "assistant", "content": desk.answer}
            self.reply(desk.status, {"model": "big-model-2", "choices": [{"message": message}]})

    def reply(self, status, document):
        body = json.dumps(document).encode()
        self.send_response(status)
        self.send_header("Content-Type", "application/json")
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    def log_message(self, *_):
        """Silent."""
