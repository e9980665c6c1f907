"""What the tests of the program for Windows share: both programs, a folder of one's own, and ways to run them."""

import atexit
import functools
import json
import os
import pathlib
import shutil
import subprocess
import sys

SOURCE = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(SOURCE / "tests" / "cli"))
import program_fixture  # noqa: E402
import stores  # noqa: E402,F401

WINE = SOURCE / "tests" / "windows" / "wine"
PREFIX = pathlib.Path(os.environ.get("WINEPREFIX", SOURCE / "build" / "wine"))
PROGRAM = pathlib.Path(os.environ["VELMORA_CONVERT_EXE"])  # for Windows
COMMAND = SOURCE / "tests" / "windows" / "velmora-convert"  # the same as a command of this machine
TWIN = pathlib.Path(os.environ["VELMORA_CONVERT"])  # for this machine
CONFIGURATION = "drive_c/users/*/AppData/Roaming/velmora"
MEMORY = 512 << 20  # that a run may take; a limit of this machine would end wine itself
EPOCH = "1700000000"
OF_THE_RUN = ("seconds", "peakRssKiB", "source", "destination")  # and not of the store


@functools.cache
def stay_up():
    """One idle process keeps the system under the program up: else each run would start and end it. What the system
    starts keeps the streams that it was started with, so that none of them may be a pipe that somebody reads."""
    streams = {"stdout": subprocess.DEVNULL, "stderr": subprocess.DEVNULL}
    idle = subprocess.Popen([WINE, "cmd", "/c", "pause"], stdin=subprocess.PIPE, **streams)
    atexit.register(idle.communicate, b"\r\n")
    subprocess.run([WINE, "cmd", "/c", "exit"], stdin=subprocess.DEVNULL, check=True, timeout=120, **streams)


def windows_path(path):
    """A path of this machine as the program for Windows sees it."""
    return "Z:" + str(path).replace("/", "\\")


def forget_profiles():
    """Each conversion is numbered by the profiles of the user: with the list gone the next one begins anew."""
    for profiles in PREFIX.glob(CONFIGURATION + "/profiles"):
        profiles.unlink()


class CommandUnderWine(program_fixture.ProgramTest):
    """The program for Windows as the tests of the one for this machine call that."""

    maxDiff = 4000

    @classmethod
    def setUpClass(cls):
        stay_up()
        super().setUpClass()

    def setUp(self):
        super().setUp()
        stores.PROGRAM = COMMAND
        forget_profiles()


class UnderWine(CommandUnderWine):
    """The same, called as it is, and its twin."""

    def setUp(self):
        super().setUp()
        self.environment["SOURCE_DATE_EPOCH"] = EPOCH

    def run_program(self, *words, **options):
        """A run of the program for Windows, to its end."""
        return subprocess.run([WINE, PROGRAM, *map(str, words)], capture_output=True, text=True, errors="replace",
                              stdin=subprocess.DEVNULL, timeout=120, **{"env": self.environment, **options})

    def run_twin(self, *words):
        """The same run of the program for this machine."""
        return subprocess.run([TWIN, *map(str, words)], capture_output=True, text=True, errors="replace",
                              env=self.environment)

    def leavings(self, run, folder, source, *options):
        """What a run leaves: its code, the report without what is the run's own, and the bytes of all other files."""
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir(parents=True)
        forget_profiles()
        shutil.rmtree(self.work / "config", ignore_errors=True)
        report = folder / "report.json"
        if "--complete" not in options:
            options = (*options, "--trace", folder / "trace.jsonl")
        ended = run("--quiet", *options, "--report", report, source, folder)
        self.assertTrue(report.is_file(), f"ended with {ended.returncode}: {ended.stderr}")
        known = json.loads(report.read_text("utf-8"))
        report.unlink()
        self.assertLess(known["peakRssKiB"], MEMORY >> 10)
        for name in OF_THE_RUN:
            self.assertIn(name, known)
            del known[name]
        files = {str(p.relative_to(folder)): p.read_bytes() for p in folder.rglob("*") if p.is_file()}
        return ended.returncode, known, files

    def compare_with_twin(self, source, *options, below="there"):
        """Runs both programs in folders of the same name: they leave the same. Gives the files that they leave."""
        here = self.leavings(self.run_twin, self.work / "here" / below, source, *options)
        there = self.leavings(self.run_program, self.work / "there" / below, source, *options)
        self.assertEqual(here[0], there[0], "exit code")
        self.assertEqual(here[1], there[1], "report")
        self.assertEqual(here[2].keys(), there[2].keys())
        for name, content in here[2].items():
            self.assertTrue(content == there[2][name], f"{name} differs")
        return here[2]
