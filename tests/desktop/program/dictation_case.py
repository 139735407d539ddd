"""A user who dictates: the program, a service of its own beside it, and a server behind that."""

import os
import pathlib
import re
import subprocess

from assistant import Assistant
from screen_reader import HOME, PROGRAM, ScreenReaderCase, eventually

SERVICE = str(pathlib.Path(PROGRAM).with_name("sayvane-service"))
DATA = HOME / "service"


class DictationCase(ScreenReaderCase):
    @classmethod
    def prepare(cls):
        cls.assistant = Assistant()
        cls.console = HOME / "console"
        cls.base = cls.serve("0", {})
        cls.environment = {"SSL_CERT_FILE": str(DATA / "certificate.pem")}
        cls.arguments = ["--service", cls.base]

    @classmethod
    def serve(cls, port, settings):
        with cls.console.open("w") as console:
            cls.service = subprocess.Popen([SERVICE, "--port", port, "--data", DATA, "--upstream", cls.assistant.address,
                                            "--upstream-model", "ears"], stdout=console, env={**os.environ, **settings})
        return eventually(lambda: re.search(r"listening on (\S+)", cls.console.read_text()), "service")[1]

    @classmethod
    def tearDownClass(cls):
        super().tearDownClass()
        cls.service.terminate()
        cls.service.wait(10)
        cls.assistant.shutdown()
        cls.assistant.server_close()
