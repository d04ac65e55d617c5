#!/usr/bin/python3
"""Where a key does not turn up: nowhere but in its file and in the request to its service."""

import base64
import contextlib
import http.server
import pathlib
import resource
import signal
import socketserver
import ssl
import subprocess
import threading
import urllib.parse

import journey
import driver
from driver import GENERATE, SET
from gi.repository import Atspi, GLib
from sessionbus import call
from waiting import Process, wait_until

CANARY = "canary/key+with=every&sign%20\u00e9"
PORT = 48620
EVERY_LOG = {"QT_LOGGING_RULES": "*=true", "QT_ASSUME_STDERR_HAS_CONSOLE": "1"}

ANSWERS = [
    (500, {}, b'{"error":{"code":500,"message":"Internal error"}}', "API error: Internal error"),
    (401, {}, b'{"error":{"message":"Incorrect API key"}}', "API error: Incorrect API key"),
    (302, {"Location": f"http://localhost:{PORT}/elsewhere"}, b"<p>Found",
     "Invalid response: Failed to parse response"),
    (200, {"Content-Length": "99"}, b'{"cut"', "Network error: Connection closed"),
    (None, {}, b"", "Network error: The request timed out."),
]
# The program gives up after two minutes of silence.
HOST = "generativelanguage.googleapis.com"
LONG_PATIENCE = 180.0


def disguises(key):
    """The key as it is, in an address, in UTF-16 and in base64 wherever it may begin there."""
    raw = key.encode()
    yield from (raw, key.encode("utf-16-le"), key.encode("utf-16-be"))
    for safe in ("", "/", "/=&+"):
        yield urllib.parse.quote(key, safe=safe).encode()
    for offset in range(3):
        text = base64.b64encode(b"\0" * offset + raw)
        # The letters at both ends hold bits of what stands before and behind.
        yield text[4 if offset else 0:-4]


class BadService(http.server.BaseHTTPRequestHandler):
    """Gives one answer after the other, none of them a picture."""

    answers: list = []
    keys: list = []

    def do_POST(self):
        self.rfile.read(int(self.headers["Content-Length"]))
        self.keys.append(self.headers["x-goog-api-key"])
        status, headers, body, _ = self.answers.pop(0)
        if status is None:
            with contextlib.suppress(ConnectionError):
                self.rfile.read(1)  # Until the program hangs up.
            return
        self.send_response_only(status)
        for name, value in {"Content-Length": str(len(body)), **headers}.items():
            self.send_header(name, value)
        self.end_headers()
        self.wfile.write(body)


class Impostor(socketserver.ThreadingTCPServer):
    """A proxy that takes the place of whatever it is to connect to, with a certificate of its own."""

    daemon_threads = True

    def __init__(self, folder):
        super().__init__(("127.0.0.1", 0), None)
        key, certificate = folder / "impostor-key.pem", folder / "impostor.pem"
        subprocess.run(["openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt",
                        "ec_paramgen_curve:prime256v1", "-nodes", "-keyout", key, "-out",
                        certificate, "-days", "1", "-subj", "/CN=impostor",
                        "-addext", f"subjectAltName=DNS:{HOST}"],
                       check=True, stderr=subprocess.DEVNULL)
        self.tls = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        self.tls.load_cert_chain(certificate, key)
        self.asked = b""
        self.heard = b""

    def finish_request(self, request, client_address):
        with contextlib.suppress(ssl.SSLError, ConnectionError):
            while b"\r\n\r\n" not in self.asked:
                self.asked += request.recv(4096)
            request.sendall(b"HTTP/1.1 200 Connection established\r\n\r\n")
            with self.tls.wrap_socket(request, server_side=True) as connection:
                self.heard += connection.recv(65536)


class Secrecy(journey.Journey):
    def setUp(self):
        super().setUp()
        self.output = self.home / "output"
        self.program.environment = EVERY_LOG
        self.monitors = []
        self.watch("bus", "--session")
        # The calls on the other bus are ours, and one of them types the key.
        (address,) = call("org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress")
        self.watch("accessibility bus", "--address", address, "type='signal'")

    def watch(self, name, *options):
        log = (self.home / name).open("wb")
        self.addCleanup(log.close)
        monitor = Process(["dbus-monitor", *options], stdout=log)
        self.addCleanup(monitor.end)
        wait_until(lambda: (self.home / name).stat().st_size, f"the monitor of the {name}")

    def start(self, **options):
        with self.output.open("ab") as output:
            self.program.start(stdout=output, stderr=subprocess.STDOUT, **options)

    def enter_key(self):
        self.program.menu_row("Settings...").click()
        self.program.type("Gemini API Key", CANARY)
        [save] = wait_until(lambda: [node for node in self.program.look("push button", "Save")
                                     if self.program.is_enabled(node)], "Save to be enabled")
        self.assert_not_accessible()
        self.program.act(save, "Press")
        self.program.find("label", "Saved in Keychain")
        self.assert_not_accessible()
        self.program.press_keys("Tab")  # The main window becomes active and reads the keys again.

    def meet_bad_answers(self):
        BadService.answers = list(ANSWERS)
        BadService.keys = []
        server = http.server.HTTPServer(("127.0.0.1", PORT), BadService)
        thread = threading.Thread(target=server.serve_forever)
        thread.start()
        try:
            for *_, status in ANSWERS:
                self.program.press(GENERATE)
                self.program.wait_status(status, LONG_PATIENCE)
                self.assert_not_accessible()
        finally:
            server.shutdown()
            thread.join()
            server.server_close()
        # As bytes of UTF-8, which Python takes for Latin-1.
        self.assertEqual(BadService.keys, [CANARY.encode().decode("latin-1")] * len(ANSWERS))

    def accessible_texts(self):
        """Whatever assistive technology can read, shown or not."""
        for node in driver.descendants(self.program.application()):
            try:
                yield from (node.get_name(), node.get_description())
                yield from node.get_attributes().values()
                if "Text" in node.get_interfaces():
                    yield Atspi.Text.get_text(node, 0, -1)
            except GLib.Error:
                continue

    def assert_not_accessible(self):
        texts = list(filter(None, self.accessible_texts()))
        self.assertIn(GENERATE, texts)
        for text in texts:
            self.assertNotIn(CANARY, text)

    def assert_in_no_file(self):
        files = {path for path in self.home.rglob("*") if path.is_file()}
        files.remove(self.program.key_file)
        self.assertLessEqual({self.output, self.program.settings_file}, files)
        for path in files:
            contents = path.read_bytes()
            for disguise in disguises(CANARY):
                self.assertNotIn(disguise, contents, path)

    def test_a_key_turns_up_nowhere_else(self):
        self.start()
        self.enter_key()
        self.program.generate("a calm sea")
        self.program.wait_status(SET)
        self.service.end()
        self.program.press(GENERATE)
        self.program.wait_status("Network error: Connection refused")
        self.meet_bad_answers()
        self.program.end()
        self.assertIn(CANARY.encode(), self.program.key_file.read_bytes())
        self.assertIn(b"qt.", self.output.read_bytes())  # The logs were on.
        self.assert_in_no_file()

    def test_a_key_is_not_told_to_an_impostor(self):
        impostor = Impostor(self.home)
        self.addCleanup(impostor.server_close)
        thread = threading.Thread(target=impostor.serve_forever)
        thread.start()
        self.addCleanup(thread.join)
        self.addCleanup(impostor.shutdown)
        # The program as it is shipped, which speaks TLS to the real service.
        proxy = f"http://127.0.0.1:{impostor.server_address[1]}"
        self.program = driver.Plenaura(
            self.binaries, self.home, "plenaura",
            {**EVERY_LOG, "http_proxy": proxy, "https_proxy": proxy, "no_proxy": ""})
        self.addCleanup(self.program.end)
        self.program.put_keys(gemini=CANARY)
        self.start()
        self.program.generate("a calm sea")
        self.program.wait_status("Network error: SSL handshake failed: "
                                 "The certificate is self-signed, and untrusted")
        self.assert_not_accessible()
        self.program.end()
        self.assertRegex(impostor.asked, f"^CONNECT {HOST}:443 HTTP/1.1\r\n".encode())
        self.assertEqual(impostor.heard, b"")
        for disguise in disguises(CANARY):
            self.assertNotIn(disguise, impostor.asked)
        self.assertIn(b"qt.", self.output.read_bytes())  # The logs were on.
        self.assert_in_no_file()

    def test_a_crash_leaves_no_dump(self):
        infinite = resource.RLIM_INFINITY
        resource.setrlimit(resource.RLIMIT_CORE, (infinite, infinite))
        self.program.put_keys(gemini=CANARY)
        self.start(cwd=self.home)
        limits = pathlib.Path(f"/proc/{self.program.process.child.pid}/limits").read_text()
        self.assertEqual(self.program.end(signal.SIGABRT), -signal.SIGABRT)
        self.assertEqual(list(self.home.glob("*core*")), [])
        self.assertRegex(limits, r"(?m)^Max core file size +1 +1 +bytes")


if __name__ == "__main__":
    journey.main()
