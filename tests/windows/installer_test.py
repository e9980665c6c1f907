"""The installer: installs silently, what it installs runs by its name alone, and its removal leaves nothing."""

import os
import pathlib
import re
import shutil
import struct
import subprocess
import tempfile
import time
import unittest

import under_wine

INSTALLER = os.environ["VELMORA_INSTALLER"]
ENVIRONMENT = r"HKLM\SYSTEM\CurrentControlSet\Control\Session Manager\Environment"
UNINSTALL = r"HKLM\Software\Microsoft\Windows\CurrentVersion\Uninstall\VelmoraConvert"
FILES = ["command-line.txt", "copyright.txt", "exit-codes.txt", "uninstall.exe", "velmora-convert.exe"]


class Installer(under_wine.UnderWine):
    def setUp(self):
        super().setUp()
        self.folder = under_wine.PREFIX / "drive_c" / "Program Files" / "Velmora"
        self.menu = under_wine.PREFIX / "drive_c/ProgramData/Microsoft/Windows/Start Menu/Programs/Velmora"
        for left in (self.folder, self.menu):  # by a run that was ended
            shutil.rmtree(left, ignore_errors=True)

    def wine(self, *words):
        """Its output goes into a file: the desktop, which the installer brings up, would keep a pipe."""
        with tempfile.TemporaryFile("w+", errors="replace") as output:
            ended = subprocess.run([under_wine.WINE, *words], stdin=subprocess.DEVNULL, stdout=output,
                                   stderr=subprocess.STDOUT, timeout=120)
            output.seek(0)
            ended.stdout = output.read()
        return ended

    def path(self):
        told = self.wine("reg", "query", ENVIRONMENT, "/v", "Path")
        self.assertEqual(0, told.returncode, told.stdout)
        return re.search(r"Path\s+REG_(?:EXPAND_)?SZ\s+(.*?)\n", told.stdout)[1]

    def remove(self):
        self.assertEqual(0, self.wine(r"C:\Program Files\Velmora\uninstall.exe", "/S").returncode)
        for _ in range(300):  # a copy of it does the work
            if not self.folder.exists():
                break
            time.sleep(0.1)

    def test_it_installs_runs_and_goes(self):
        before = self.path()
        self.assertEqual(0, self.wine(INSTALLER, "/S").returncode)
        self.assertEqual(FILES, self.produced(self.folder))
        self.assertEqual(before + r";C:\Program Files\Velmora", self.path())
        self.assertEqual(["Help of velmora-convert.lnk"], self.produced(self.menu))
        self.assertEqual(pathlib.Path(under_wine.PROGRAM).read_bytes(),
                         (self.folder / "velmora-convert.exe").read_bytes())

        ended = self.wine("cmd", "/c", "velmora-convert --version")
        self.assertRegex(ended.stdout, r"^velmora-convert \d+\.\d+\.\d+$")
        self.assertIn("DisplayVersion", self.wine("reg", "query", UNINSTALL).stdout)

        self.assertEqual(0, self.wine(INSTALLER, "/S").returncode, "once more, over itself")
        self.assertEqual(before + r";C:\Program Files\Velmora", self.path())

        self.remove()
        self.assertFalse(self.folder.exists())
        self.assertFalse(self.menu.exists())
        self.assertEqual(before, self.path())
        self.assertNotEqual(0, self.wine("reg", "query", UNINSTALL).returncode)

    def test_a_path_longer_than_any_text_of_the_installer_keeps_every_folder(self):
        before = self.path()
        long = before + "".join(rf";C:\{letter * 200}" for letter in "abcdefghijklmnop")
        self.addCleanup(self.wine, "reg", "add", ENVIRONMENT, "/v", "Path", "/t", "REG_EXPAND_SZ", "/d", before, "/f")
        self.wine("reg", "add", ENVIRONMENT, "/v", "Path", "/t", "REG_EXPAND_SZ", "/d", long, "/f")
        self.assertEqual(long, self.path())
        self.assertEqual(0, self.wine(INSTALLER, "/S").returncode)
        self.assertEqual(long + r";C:\Program Files\Velmora", self.path())
        self.remove()
        self.assertEqual(long, self.path())

    def test_the_program_has_icon_version_and_manifest(self):
        told = subprocess.run(["x86_64-w64-mingw32-objdump", "-s", "-j", ".rsrc", under_wine.PROGRAM],
                              capture_output=True, text=True, check=True).stdout
        resources = bytes.fromhex("".join(re.findall(r"^ [0-9a-f]+ ((?:[0-9a-f]+ ){1,4})", told, re.M)).replace(" ", ""))
        self.assertIn("Velmora Convert OST to PST".encode("utf-16-le"), resources)
        self.assertIn(b">true</longPathAware>", resources)
        self.assertIn(b"\x89PNG\r\n", resources)
        self.assertIn(struct.pack("<I", 0xFEEF04BD), resources, "the mark of a version")


if __name__ == "__main__":
    unittest.main()
