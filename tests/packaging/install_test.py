"""What `cmake --install` puts below a prefix, and that everything is found and runs from there."""

import os
import pathlib
import shutil
import signal
import subprocess
import tempfile
import time
import unittest

BUILD = os.environ["VELMORA_BUILD"]
ID = "example.velmora.convert"
EXPECTED = {
    "bin/velmora",
    "bin/velmora-convert",
    "vm-oxp.html",
    *(f"Lang/{language}.INI" for language in ("English", "French", "German", "Italian", "Spanish")),
    f"share/applications/{ID}.desktop",
    f"share/metainfo/{ID}.metainfo.xml",
    f"share/mime/packages/{ID}.xml",
    f"share/icons/hicolor/scalable/apps/{ID}.svg",
    *(f"share/icons/hicolor/{size}x{size}/apps/{ID}.png" for size in (16, 22, 24, 32, 48, 64, 128, 256, 512)),
    "share/bash-completion/completions/velmora-convert",
    "share/doc/velmora-convert/command-line.md",
    "share/doc/velmora-convert/exit-codes.md",
    "share/man/man1/velmora.1",
    "share/man/man1/velmora-convert.1",
    "share/zsh/site-functions/_velmora-convert",
}


def comes(condition, seconds=60):
    """Whether the condition comes true within that time."""
    end = time.monotonic() + seconds
    while not condition():
        if time.monotonic() > end:
            return False
        time.sleep(0.05)
    return True


class Install(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.prefix = pathlib.Path(cls.folder.name, "prefix")
        done = subprocess.run(["cmake", "--install", BUILD, "--prefix", cls.prefix], capture_output=True, text=True)
        if done.returncode != 0:
            raise AssertionError(done.stdout + done.stderr)
        # A user of their own: no settings, no running copy, and nothing of the machine's.
        cls.home = pathlib.Path(cls.folder.name, "home")
        (cls.home / "run").mkdir(parents=True)
        (cls.home / "run").chmod(0o700)
        cls.environment = {key: value for key, value in os.environ.items() if not key.startswith(("XDG_", "QT_"))}
        cls.environment.update(HOME=str(cls.home), XDG_RUNTIME_DIR=str(cls.home / "run"))

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def run_program(self, *command):
        return subprocess.run(command, capture_output=True, text=True, check=True, env=self.environment).stdout

    def start_wizard(self, screen, **more):
        return subprocess.Popen([self.prefix / "bin/velmora"], stderr=subprocess.DEVNULL,
                                env={**self.environment, "QT_QPA_PLATFORM": "xcb", "DISPLAY": screen.display, **more})

    def test_the_prefix_holds_this_and_nothing_else(self):
        found = {str(path.relative_to(self.prefix)) for path in self.prefix.rglob("*") if path.is_file()}
        self.assertEqual(found - {"settings.ini", "vmupdate.EXE"}, EXPECTED)

    def test_the_command_line_runs(self):
        self.assertRegex(self.run_program(self.prefix / "bin/velmora-convert", "--version"),
                         r"^velmora-convert \d+\.\d+\.\d+\n$")

    def test_the_command_line_converts(self):
        store = self.home / "demo.ost"
        subprocess.run([os.environ["VELMORA_FORGE_DEMO"], store], check=True, stdout=subprocess.DEVNULL)
        self.run_program(self.prefix / "bin/velmora-convert", "--quiet", store, self.home)
        self.assertEqual((self.home / "demo Converted0" / "demo Converted.pst").read_bytes()[:4], b"!BDN")

    def test_the_manuals_are_in_form(self):
        manuals = sorted((self.prefix / "share/man/man1").iterdir())
        said = subprocess.run(["mandoc", "-T", "lint", "-W", "warning", *manuals], capture_output=True, text=True)
        self.assertEqual((said.returncode, said.stdout), (0, ""))

    def test_bash_loads_the_completion_by_the_name_of_the_command(self):
        script = ("source /usr/share/bash-completion/bash_completion; _completion_loader velmora-convert;"
                  " complete -p velmora-convert")
        shown = subprocess.run(["bash", "-c", script], capture_output=True, text=True,
                               env={**self.environment, "XDG_DATA_DIRS": str(self.prefix / "share")}).stdout
        self.assertIn("_velmora_convert", shown)

    def test_the_wizard_starts_and_looks_beside_itself(self):
        # The program's first word to the outside comes when all checks are passed and the frame is made.
        said = self.home / "updates"
        helper = self.prefix / "vmupdate.EXE"
        helper.write_text(f'#!/bin/sh\necho "$@" >"{said}.new"\nmv "{said}.new" "{said}"\n')
        helper.chmod(0o755)
        # Words on its command line are not read, by the windows' library neither.
        wizard = subprocess.Popen([self.prefix / "bin/velmora", "-platform", "none", "/mail.ost"],
                                  env={**self.environment, "QT_QPA_PLATFORM": "offscreen"}, stderr=subprocess.PIPE)
        try:
            self.assertTrue(comes(said.exists), wizard.poll())
            self.assertEqual(said.read_text(), "/SilentCheck /NoIcon /NoUpdateSelf\n")
            time.sleep(0.5)
            self.assertIsNone(wizard.poll(), "it stays with its start page")
        finally:
            helper.unlink()
            wizard.send_signal(signal.SIGTERM)
            wizard.communicate(timeout=60)

    def test_the_wizard_finds_guide_and_languages(self):
        for program in ("Xvfb", "openbox", "xdotool"):
            self.assertIsNotNone(shutil.which(program), f"{program} is needed")
        (self.prefix / "settings.ini").write_text("[OST to PST Texts]\nIDS_LANGUAGE=2\n")
        opened = self.home / "opened"
        tools = self.home / "tools"
        tools.mkdir()
        (tools / "xdg-open").write_text(f'#!/bin/sh\necho "$1" >"{opened}.new"\nmv "{opened}.new" "{opened}"\n')
        (tools / "xdg-open").chmod(0o755)
        with Screen() as screen:
            wizard = self.start_wizard(screen, PATH=f"{tools}:{os.environ['PATH']}")
            try:
                screen.expect("Velmora Convert OST to PST")
                # From the start page to the search, which has the menu; its first entry is the guide.
                self.assertTrue(screen.works(opened.exists, "alt+f", "alt+e", "h"))
                self.assertEqual(opened.read_text(), f"{self.prefix}/vm-oxp.html\n")
                about = "Info über Velmora Convert OST to PST"
                self.assertTrue(screen.works(lambda: screen.title() == about, "alt+e", "a"), screen.title())
            finally:
                end(wizard)
                (self.prefix / "settings.ini").unlink()

    def test_a_second_start_shows_an_empty_error_and_leaves_the_first_alone(self):
        with Screen() as screen:
            first = self.start_wizard(screen)
            second = None
            try:
                screen.expect("Velmora Convert OST to PST")
                second = self.start_wizard(screen)
                screen.expect("Error")
                self.assertTrue(screen.works(lambda: second.poll() is not None, "Return"))
                self.assertEqual(second.returncode, 0)
                screen.expect("Velmora Convert OST to PST")
                self.assertIsNone(first.poll())
            finally:
                end(first, second)


def end(*processes):
    for process in processes:
        if process is not None:
            process.kill()
            process.wait()


class Screen:
    """A screen with a window manager, without which no window is ever active."""

    def __enter__(self):
        read, write = os.pipe()
        self.processes = [subprocess.Popen(
            ["Xvfb", "-displayfd", str(write), "-screen", "0", "1280x900x24", "-nolisten", "tcp"],
            pass_fds=[write], stderr=subprocess.DEVNULL)]
        os.close(write)
        with os.fdopen(read) as told:
            self.display = ":" + told.readline().strip()
        self.environment = {**os.environ, "DISPLAY": self.display}
        self.processes.append(subprocess.Popen(["openbox"], env=self.environment, stderr=subprocess.DEVNULL))
        if not comes(lambda: self.ask("get_desktop").returncode == 0):
            raise AssertionError("there is no window manager")
        return self

    def __exit__(self, *_):
        for process in reversed(self.processes):
            process.terminate()
            process.wait()

    def ask(self, *command):
        return subprocess.run(["xdotool", *command], capture_output=True, text=True, env=self.environment)

    def title(self):
        return self.ask("getactivewindow", "getwindowname").stdout.strip()

    def expect(self, title):
        """Waits for an active window of that title."""
        if not comes(lambda: self.title() == title):
            raise AssertionError(f"no window {title!r}, but {self.title()!r}")

    def works(self, condition, *keys):
        """Whether the keys, one after the other, lead to the condition; a slow machine gets them again."""
        for _ in range(10):
            for key in keys:
                self.ask("key", "--clearmodifiers", key)
                time.sleep(0.3)
            if comes(condition, 2):
                return True
        return False


if __name__ == "__main__":
    unittest.main()
