"""A browser without a window, driven over pipes: what tests of pages need of it."""

import base64
import fcntl
import json
import os
import shutil
import subprocess
import tempfile

PROGRAM = shutil.which("chromium") or shutil.which("google-chrome")


class Browser:
    """One page. Its messages are those of the browser's own protocol."""

    def __init__(self):
        self.profile = tempfile.TemporaryDirectory(ignore_cleanup_errors=True)
        to_read, self.to = os.pipe()
        self.answers, from_write = os.pipe()

        def place():  # the protocol wants 3 and 4, of which either may be the other pipe now
            aside = [fcntl.fcntl(end, fcntl.F_DUPFD, 10) for end in (to_read, from_write)]
            os.dup2(aside[0], 3)
            os.dup2(aside[1], 4)

        self.process = subprocess.Popen(
            [PROGRAM, "--headless", "--remote-debugging-pipe", "--disable-gpu", "--no-first-run", "--hide-scrollbars",
             "--disable-dev-shm-usage", "--host-resolver-rules=MAP * ~NOTFOUND",
             *(["--no-sandbox"] if os.geteuid() == 0 else []), f"--user-data-dir={self.profile.name}", "about:blank"],
            preexec_fn=place, close_fds=False, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(to_read)
        os.close(from_write)
        self.waiting = b""
        self.number = 0
        self.events = []
        self.session = None
        page = next(t for t in self.ask("Target.getTargets")["targetInfos"] if t["type"] == "page")
        self.session = self.ask("Target.attachToTarget", targetId=page["targetId"], flatten=True)["sessionId"]
        for domain in ("Page", "Runtime", "Log"):
            self.ask(f"{domain}.enable")

    def next_message(self):
        while b"\0" not in self.waiting:
            piece = os.read(self.answers, 1 << 20)
            if not piece:
                raise EOFError("the browser has ended")
            self.waiting += piece
        message, self.waiting = self.waiting.split(b"\0", 1)
        return json.loads(message)

    def ask(self, method, **parameters):
        self.number += 1
        message = {"id": self.number, "method": method, "params": parameters}
        if self.session:
            message["sessionId"] = self.session
        os.write(self.to, json.dumps(message).encode() + b"\0")
        while True:
            answer = self.next_message()
            if answer.get("id") == self.number:
                if "error" in answer:
                    raise RuntimeError(f"{method}: {answer['error']}")
                return answer["result"]
            self.events.append(answer)

    def look(self, width, dark=False):
        self.ask("Emulation.setDeviceMetricsOverride", width=width, height=900, deviceScaleFactor=1, mobile=width < 600)
        self.ask("Emulation.setEmulatedMedia",
                 features=[{"name": "prefers-color-scheme", "value": "dark" if dark else "light"}])

    def open(self, path):
        self.events.clear()
        self.ask("Page.navigate", url=path.as_uri())
        while not any(event["method"] == "Page.loadEventFired" for event in self.events):
            self.events.append(self.next_message())

    def value(self, script):
        """What an expression of the page is."""
        answer = self.ask("Runtime.evaluate", expression=script, returnByValue=True, awaitPromise=True)
        if "exceptionDetails" in answer:
            raise RuntimeError(answer["exceptionDetails"])
        return answer["result"].get("value")

    def key(self, name):
        for kind in ("keyDown", "keyUp"):
            self.ask("Input.dispatchKeyEvent", type=kind, key=name, code=name, windowsVirtualKeyCode={"Tab": 9}[name])

    def complaints(self):
        """What the browser said of the page since it was opened."""
        return [event["params"] for event in self.events
                if event["method"] in ("Log.entryAdded", "Runtime.exceptionThrown", "Runtime.consoleAPICalled")]

    def picture(self, path, height=None):
        size = self.ask("Page.getLayoutMetrics")["cssContentSize"]
        clip = {"x": 0, "y": 0, "width": size["width"], "height": height or size["height"], "scale": 1}
        shot = self.ask("Page.captureScreenshot", format="png", captureBeyondViewport=True, clip=clip)
        path.write_bytes(base64.b64decode(shot["data"]))

    def close(self):
        os.close(self.to)
        self.process.wait(10)
        os.close(self.answers)
        self.profile.cleanup()
