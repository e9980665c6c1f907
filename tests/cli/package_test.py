"""The Debian package: what is in it, and what the distribution's own checker says."""

import os
import pathlib
import shutil
import subprocess
import tempfile
import unittest

EXPECTED = {
    "./opt/velmora/bin/velmora-convert",
    "./usr/bin/velmora-convert",
    "./usr/share/bash-completion/completions/velmora-convert",
    "./usr/share/doc/velmora-convert/changelog.gz",
    "./usr/share/doc/velmora-convert/command-line.md",
    "./usr/share/doc/velmora-convert/copyright",
    "./usr/share/doc/velmora-convert/exit-codes.md",
    "./usr/share/lintian/overrides/velmora-convert",
    "./usr/share/man/man1/velmora-convert.1.gz",
    "./usr/share/zsh/vendor-completions/_velmora-convert",
}


class Package(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        made = subprocess.run(["cpack", "--config", os.environ["VELMORA_CPACK_CONFIG"], "-B", cls.folder.name],
                              capture_output=True, text=True)
        if made.returncode != 0:
            raise AssertionError(made.stdout + made.stderr)
        cls.package, = pathlib.Path(cls.folder.name).glob("velmora-convert_*.deb")

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def test_it_holds_the_program_its_manual_and_completions(self):
        listed = subprocess.run(["dpkg-deb", "--contents", self.package], capture_output=True, text=True, check=True)
        names = {line.split(None, 5)[5].split(" -> ")[0] for line in listed.stdout.splitlines()}
        self.assertEqual({n for n in names if not n.endswith("/")}, EXPECTED)

    def test_the_packed_program_runs(self):
        with tempfile.TemporaryDirectory() as folder:
            subprocess.run(["dpkg-deb", "--extract", self.package, folder], check=True)
            said = subprocess.run([folder + "/opt/velmora/bin/velmora-convert", "--version"], capture_output=True,
                                  text=True, check=True).stdout
        version = subprocess.run(["dpkg-deb", "--field", self.package, "Version"], capture_output=True, text=True,
                                 check=True).stdout
        self.assertEqual(said, f"velmora-convert {version}")

    def test_lintian_finds_nothing(self):
        self.assertIsNotNone(shutil.which("lintian"), "lintian is needed")
        checked = subprocess.run(["lintian", "--allow-root", "--fail-on", "error,warning", self.package],
                                 capture_output=True, text=True)
        self.assertEqual((checked.returncode, checked.stdout), (0, ""))


if __name__ == "__main__":
    unittest.main()
