"""The wizard for Windows, installed, in a real window, worked by keys alone from its start to its end: the store that it
writes is the one that the command line for this machine writes of the same source. Then it is removed. VELMORA_PICTURES
names a folder for pictures of its pages."""

import os
import pathlib
import re
import shutil
import subprocess
import sys
import time
import unittest

SOURCE = pathlib.Path(__file__).resolve().parents[2]
WINE = SOURCE / "tests" / "windows" / "wine"
PREFIX = SOURCE / "build" / "wine-wizard"
DRIVE = PREFIX / "drive_c"
INSTALLED = DRIVE / "Program Files" / "Velmora"
MENU = DRIVE / "ProgramData/Microsoft/Windows/Start Menu/Programs/Velmora"
TITLE = "Velmora Convert OST to PST"  # of all pages, and of the dialog for the source
LIMIT = 60  # seconds for anything to come
OPENBOX = """<openbox_config xmlns="http://openbox.org/3.4/rc">
  <focus><focusNew>yes</focusNew></focus><placement><policy>Smart</policy><center>yes</center></placement>
  <keyboard><keybind key="A-F4"><action name="Close"/></keybind></keyboard>
</openbox_config>"""


class Display:
    """A display of its own with a manager of windows, without which no window is ever active."""

    def __init__(self, work):
        reader, writer = os.pipe()
        self.server = subprocess.Popen(["Xvfb", "-displayfd", str(writer), "-screen", "0", "1400x1000x24", "-nolisten",
                                        "tcp"], pass_fds=[writer], stderr=subprocess.DEVNULL)
        os.close(writer)
        self.name = ":" + os.read(reader, 20).decode().strip()
        self.environment = {**os.environ, "DISPLAY": self.name, "XDG_CONFIG_HOME": str(work / "config")}
        (work / "config" / "openbox").mkdir(parents=True)
        (work / "config" / "openbox" / "rc.xml").write_text(OPENBOX)
        self.manager = subprocess.Popen(["openbox"], env=self.environment, stderr=subprocess.DEVNULL)

    def close(self):
        for process in (self.manager, self.server):
            process.terminate()
            process.wait()

    def do(self, *words):
        """What xdotool says; nothing where it fails."""
        done = subprocess.run(["xdotool", *words], env=self.environment, capture_output=True, text=True)
        return done.stdout.strip() if done.returncode == 0 else ""

    def title(self):
        return self.do("getactivewindow", "getwindowname")

    def windows(self):
        return [self.do("getwindowname", window) for window in self.do("search", "--onlyvisible", "--name", ".").split()]

    def picture(self, name):
        folder = os.environ.get("VELMORA_PICTURES")
        if folder:
            time.sleep(1)
            subprocess.run(["import", "-window", "root", f"{folder}/{name}.png"], env=self.environment, check=True)


class Wizard(unittest.TestCase):
    def setUp(self):
        self.work = DRIVE / "Mail"
        shutil.rmtree(self.work, ignore_errors=True)
        self.source = self.work / "outlook.ost"
        self.target = self.work / "New"
        self.target.mkdir(parents=True)
        subprocess.run([os.environ["VELMORA_FORGE_DEMO"], self.source], check=True)
        self.display = Display(self.work)
        self.addCleanup(self.display.close)
        self.environment = {**self.display.environment, "VELMORA_DISPLAY": self.display.name,
                            "SOURCE_DATE_EPOCH": "1700000000", "WINEPREFIX": str(PREFIX)}
        for settings in DRIVE.glob("users/*/AppData/Roaming/velmora"):
            shutil.rmtree(settings)
        shutil.rmtree(INSTALLED, ignore_errors=True)  # by a run that was ended

    def wine(self, *words):
        subprocess.run([WINE, *words], env=self.environment, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                       stderr=subprocess.DEVNULL, check=True)

    def wait(self, what, condition, seconds=LIMIT):
        end = time.monotonic() + seconds
        while not condition():
            if time.monotonic() > end:
                self.display.picture("failure")
                self.fail(f"{what} did not come; there are {self.display.windows()}")
            time.sleep(0.1)

    def press(self, keys, what, condition, text=None):
        """Presses the keys until that comes, ahead of them the text in place of the one that is there: a window that has
        only just come up may miss some of it."""
        end = time.monotonic() + LIMIT
        while not condition():
            if time.monotonic() > end:
                self.display.picture("failure")
                self.fail(f"{what} did not come by {keys}; there are {self.display.windows()}")
            if text:
                time.sleep(1)
                self.display.do("key", "ctrl+a")
                self.display.do("type", "--delay", "30", text)
                self.display.picture("typed")
            self.display.do("key", "--clearmodifiers", keys)
            again = time.monotonic() + 4
            while time.monotonic() < again and not condition():
                time.sleep(0.1)

    def on_page(self):
        """The pages take turns in one window. Here it may stay inactive when a dialog in front of it has closed."""
        if self.display.do("getactivewindow") != self.window and len(self.display.windows()) == 1:
            self.display.do("windowactivate", self.window)
        return self.display.do("getactivewindow") == self.window

    def in_dialog(self, title):
        return lambda: not self.on_page() and re.fullmatch(title, self.display.title())

    def pick(self, title, path):
        """Names a file or folder in the dialog behind "Browse..."."""
        self.press("alt+r", "the dialog", self.in_dialog(title))
        self.press("Return", "the page", self.on_page, "C:\\" + "\\".join(path.relative_to(DRIVE).parts))

    def test_it_writes_the_store_of_the_command_line(self):
        self.wine(os.environ["VELMORA_INSTALLER"], "/S")
        self.assertTrue((MENU / f"{TITLE}.lnk").exists())
        program = INSTALLED / "wizard" / "bin" / "velmora.exe"
        wizard = subprocess.Popen([WINE, program], env=self.environment, stdin=subprocess.DEVNULL)
        self.addCleanup(subprocess.run, ["/usr/lib/wine/wineserver64", "-k"], env=self.environment)
        self.wait("the start page", lambda: self.display.title() == TITLE, 180)
        self.window = self.display.do("getactivewindow")
        self.display.picture("start")
        self.display.do("key", "alt+s")
        time.sleep(2)
        self.display.picture("browse")
        self.pick(TITLE, self.source)
        self.display.picture("source")
        self.display.do("key", "alt+n")
        time.sleep(2)
        self.display.picture("destination")
        self.pick("Select (destination path|Folder)", self.target)  # wine names a dialog for folders itself
        self.display.do("key", "alt+c")
        store = self.target / "outlook Converted0" / "outlook Converted.pst"
        self.wait("the folder of the new store", self.in_dialog(".*outlook Converted0"))
        self.display.picture("folder")
        self.press("alt+F4", "the page", self.on_page)
        self.display.picture("finished")
        self.assertFalse((store.parent / "FirstTableItem.dat").exists())
        self.display.do("key", "alt+f")
        time.sleep(2)
        self.display.picture("again")
        self.press("alt+F4", "the exit question", self.in_dialog("Information"))
        self.display.picture("exit")
        self.display.do("key", "alt+y")
        self.assertEqual(0, wizard.wait(LIMIT))
        self.wine(r"C:\Program Files\Velmora\uninstall.exe", "/S")
        self.wait("the end of the removal", lambda: not INSTALLED.exists())  # a copy of it does the work
        self.assertFalse(MENU.exists())

        here = self.work / "here"
        here.mkdir()
        subprocess.run([os.environ["VELMORA_CONVERT"], "--quiet", self.source, here], env=self.environment, check=True)
        new = here / "outlook Converted0" / "outlook Converted.pst"
        self.assertTrue(new.read_bytes() == store.read_bytes(), "the stores differ")


if __name__ == "__main__":
    sys.exit(unittest.main())
