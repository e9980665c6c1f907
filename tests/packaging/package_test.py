"""The Debian packages: what is in them, and what the distribution's own checker says."""

import os
import pathlib
import shutil
import subprocess
import tempfile
import unittest

ID = "example.velmora.convert"
EXPECTED = {
    "velmora-convert": {
        "./opt/velmora/bin/velmora-convert",
        "./usr/bin/velmora-convert -> /opt/velmora/bin/velmora-convert",
        "./usr/share/bash-completion/completions/velmora-convert",
        "./usr/share/doc/velmora-convert/changelog.gz",
        "./usr/share/doc/velmora-convert/command-line.md",
        "./usr/share/doc/velmora-convert/copyright",
        "./usr/share/doc/velmora-convert/exit-codes.md",
        "./usr/share/lintian/overrides/velmora-convert",
        "./usr/share/man/man1/velmora-convert.1.gz",
        "./usr/share/zsh/vendor-completions/_velmora-convert",
    },
    "velmora": {
        "./opt/velmora/bin/velmora",
        "./opt/velmora/vm-oxp.html",
        *(f"./opt/velmora/Lang/{language}.INI" for language in ("English", "French", "German", "Italian", "Spanish")),
        "./usr/bin/velmora -> /opt/velmora/bin/velmora",
        f"./usr/share/applications/{ID}.desktop",
        "./usr/share/doc/velmora/changelog.gz",
        "./usr/share/doc/velmora/copyright",
        f"./usr/share/icons/hicolor/scalable/apps/{ID}.svg",
        *(f"./usr/share/icons/hicolor/{size}x{size}/apps/{ID}.png" for size in (16, 22, 24, 32, 48, 64, 128, 256, 512)),
        "./usr/share/lintian/overrides/velmora",
        "./usr/share/man/man1/velmora.1.gz",
        f"./usr/share/metainfo/{ID}.metainfo.xml",
        f"./usr/share/mime/packages/{ID}.xml",
    },
}


def field(package, name):
    return subprocess.run(["dpkg-deb", "--field", package, name], capture_output=True, text=True, check=True).stdout


class Package(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        made = subprocess.run(["cpack", "--config", os.environ["VELMORA_BUILD"] + "/CPackConfig.cmake",
                               "-B", cls.folder.name], capture_output=True, text=True)
        if made.returncode != 0:
            raise AssertionError(made.stdout + made.stderr)
        cls.packages = {path.name.split("_")[0]: path for path in pathlib.Path(cls.folder.name).glob("*.deb")}
        cls.root = pathlib.Path(cls.folder.name, "root")
        for package in cls.packages.values():
            subprocess.run(["dpkg-deb", "--extract", package, cls.root], check=True)

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def test_there_is_one_for_the_command_line_and_one_for_the_wizard(self):
        self.assertEqual(set(self.packages), set(EXPECTED))

    def test_each_holds_its_program_and_what_belongs_to_it(self):
        for name, expected in EXPECTED.items():
            listed = subprocess.run(["dpkg-deb", "--contents", self.packages[name]], capture_output=True, text=True,
                                    check=True).stdout
            held = {line.split(None, 5)[5] for line in listed.splitlines()}
            self.assertEqual({entry for entry in held if not entry.endswith("/")}, expected)

    def test_the_packed_command_line_runs(self):
        said = subprocess.run([self.root / "opt/velmora/bin/velmora-convert", "--version"], capture_output=True,
                              text=True, check=True).stdout
        self.assertEqual(said, "velmora-convert " + field(self.packages["velmora-convert"], "Version"))

    def test_the_wizard_asks_for_its_libraries_and_for_what_opens_folders(self):
        needed = field(self.packages["velmora"], "Depends")
        for library in ("libqt6widgets6", "libqt6svg6", "xdg-utils"):
            self.assertIn(library, needed)
        self.assertNotIn("libqt6", field(self.packages["velmora-convert"], "Depends"))

    def test_removing_them_takes_their_own_folder_and_leaves_the_system_s(self):
        with tempfile.TemporaryDirectory() as root:
            database = pathlib.Path(root, "var/lib/dpkg")
            for folder in ("updates", "info"):
                (database / folder).mkdir(parents=True)
            (database / "status").touch()

            def dpkg(*words):
                subprocess.run(["dpkg", f"--root={root}", "--force-not-root", "--force-script-chrootless",
                                "--force-depends", "--force-bad-path", "--log=/dev/null", *map(str, words)],
                               check=True, capture_output=True)

            dpkg("--install", *self.packages.values())
            for name, left in (("velmora", True), ("velmora-convert", False)):
                self.assertTrue(pathlib.Path(root, "opt/velmora/bin", name).is_file())
                dpkg("--remove", name)
                self.assertEqual(pathlib.Path(root, "opt/velmora").exists(), left)
            self.assertTrue(pathlib.Path(root, "opt").is_dir())

    def test_lintian_finds_nothing(self):
        self.assertIsNotNone(shutil.which("lintian"), "lintian is needed")
        checked = subprocess.run(["lintian", "--allow-root", "--fail-on", "error,warning", *self.packages.values()],
                                 capture_output=True, text=True)
        self.assertEqual((checked.returncode, checked.stdout), (0, ""))


if __name__ == "__main__":
    unittest.main()
