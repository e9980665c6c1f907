"""What the tests of the program as its user meets it share: a store, a folder of their own, and ways to run it, on a
terminal or up to a stage."""

import fcntl
import os
import pathlib
import pty
import re
import signal
import subprocess
import sys
import tempfile
import termios
import time
import unittest

import stores

F_SETPIPE_SZ = 1031
PIPE_SIZE = 4096


class ProgramTest(unittest.TestCase):
    STAGES = []  # as the conversion announces them

    @classmethod
    def setUpClass(cls):
        cls.demo_folder = tempfile.TemporaryDirectory()
        cls.demo = pathlib.Path(cls.demo_folder.name) / "demo.ost"
        subprocess.run([os.environ["VELMORA_FORGE_DEMO"], cls.demo], check=True)

    @classmethod
    def tearDownClass(cls):
        cls.demo_folder.cleanup()

    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.work = pathlib.Path(self.folder.name)
        self.out = self.work / "out"
        self.out.mkdir()
        self.environment = {**os.environ, "XDG_CONFIG_HOME": str(self.work / "config")}
        self.environment.pop("SOURCE_DATE_EPOCH", None)

    def run_program(self, *words, **options):
        return subprocess.run([stores.PROGRAM, *map(str, words)], capture_output=True, text=True, errors="replace",
                              **{"env": self.environment, **options})

    def produced(self, folder=None):
        folder = folder or self.out
        return sorted(str(p.relative_to(folder)) for p in folder.rglob("*"))

    def write(self, name, content):
        path = self.work / name
        path.write_bytes(content)
        return path

    def on_a_terminal(self, *options, **more):
        """What a conversion says on a terminal; `more` is of its environment."""
        main, side = pty.openpty()
        self.addCleanup(os.close, main)
        child = subprocess.Popen([stores.PROGRAM, *options, self.demo, self.out], stdout=subprocess.DEVNULL,
                                 stderr=side, env={**self.environment, **more})
        os.close(side)
        text = b""
        while True:
            try:
                piece = os.read(main, 4096)
            except OSError:
                break
            if not piece:
                break
            text += piece
        self.assertEqual(child.wait(), 0)
        return text

    def check_bar(self, begins, *options):
        """On a terminal the stages begin at these percentages of the run, and the bar never goes back."""
        text = self.on_a_terminal(*options, NO_COLOR="1").decode()
        drawn = [(int(share), caption) for share, caption in re.findall(r"(\d+)% ([^\r\n]*)", text)]
        shares = [share for share, _ in drawn]
        self.assertEqual(shares, sorted(shares))
        first = {caption: share for share, caption in reversed(drawn)}
        self.assertEqual([first[stage] for stage in self.STAGES], begins)

    def check_store(self, path, *options):
        tool = stores.aid("VELMORA_TOOLS", "tools") / "pstcheck.py"
        if tool.is_file():
            checked = subprocess.run([sys.executable, tool, *options, path], capture_output=True, text=True)
            self.assertEqual(checked.returncode, 0, checked.stdout)

    def start_until(self, stage, source, *options):
        """Starts a conversion and lets it wait where it is to announce a stage: the pipe for its messages takes just
        the stages before it."""
        reading, writing = os.pipe()
        fcntl.fcntl(writing, F_SETPIPE_SZ, PIPE_SIZE)
        before = sum(len(s) + 1 for s in self.STAGES[:self.STAGES.index(stage)])
        os.write(writing, b"." * (PIPE_SIZE - before - 1))
        child = subprocess.Popen([stores.PROGRAM, *options, source, self.out], stderr=writing,
                                 stdout=subprocess.PIPE, env=self.environment)
        os.close(writing)
        waiting = bytearray(4)
        while int.from_bytes(waiting, sys.byteorder) < PIPE_SIZE - 1:  # until all that fits is said
            self.assertIsNone(child.poll(), "the program did not wait")
            time.sleep(0.01)
            fcntl.ioctl(reading, termios.FIONREAD, waiting)
        return child, reading

    @staticmethod
    def finish(child, reading):
        """Lets it go on to its end: exit code, messages, output."""
        with open(reading, "rb") as messages:
            said = messages.read().decode().lstrip(".")
        output = child.stdout.read().decode()
        child.stdout.close()
        return child.wait(), said, output

    def stop_at(self, stage, *options):
        """Sends an interrupt while the program waits to announce a stage."""
        child, messages = self.start_until(stage, self.demo, *options)
        child.send_signal(signal.SIGINT)
        code, said, self.output = self.finish(child, messages)
        return code, said
