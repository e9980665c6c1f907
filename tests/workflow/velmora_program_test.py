"""The wizard's program where no window can open: what it answers, and that it does so."""

import os
import subprocess
import sys
import unittest

PROGRAM = os.environ["VELMORA"]
VERSION = os.environ["VELMORA_VERSION"]


def run(*words, **options):
    """Without a display, and without anything that would stand in for one."""
    environment = {name: value for name, value in os.environ.items()
                   if name not in ("DISPLAY", "WAYLAND_DISPLAY") and not name.startswith("QT_")}
    return subprocess.run([PROGRAM, *words], env=environment, capture_output=True, text=True, timeout=60, **options)


class Program(unittest.TestCase):
    def test_the_version_needs_no_window(self):
        ended = run("--version")
        self.assertEqual((ended.returncode, ended.stdout, ended.stderr), (0, f"velmora {VERSION}\n", ""))

    def test_help_needs_no_window(self):
        ended = run("--help")
        self.assertEqual((ended.returncode, ended.stderr), (0, ""))
        self.assertTrue(ended.stdout.startswith("Usage: velmora [--help | --version]\n"), ended.stdout)

    def test_any_other_word_starts_the_wizard(self):
        for words in ((), ("some.ost",), ("-version",), ("--versions",)):
            ended = run(*words)
            self.assertNotEqual(ended.returncode, 0, "there is no display to open a window on")
            self.assertEqual(ended.stdout, "")

    @unittest.skipUnless(os.path.exists("/dev/full"), "the system has no device that is always full")
    def test_an_answer_that_nobody_takes_is_a_failure(self):
        with open("/dev/full", "w") as full:
            ended = subprocess.run([PROGRAM, "--version"], stdout=full)
        self.assertEqual(ended.returncode, 1)


if __name__ == "__main__":
    sys.exit(unittest.main())
