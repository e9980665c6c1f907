"""What the desktop is told about the wizard: the validators of each form, and that the forms agree."""

import os
import pathlib
import re
import shutil
import struct
import subprocess
import tempfile
import unittest
import xml.etree.ElementTree as xml

SOURCE = pathlib.Path(__file__).resolve().parents[2]
DATA = SOURCE / "packaging" / "desktop"
ID = "example.velmora.convert"
ENTRY = DATA / f"{ID}.desktop"
METAINFO = DATA / f"{ID}.metainfo.xml"
MIME = DATA / f"{ID}.mime.xml"
MIME_TYPE = "application/vnd.ms-outlook-pst"


def run(*command):
    done = subprocess.run(command, capture_output=True, text=True)
    return done.returncode, done.stdout + done.stderr


def entry_values():
    return dict(re.findall(r"^([A-Za-z]+)=(.*)$", ENTRY.read_text("utf-8"), re.M))


class DesktopData(unittest.TestCase):
    def test_the_desktop_entry_is_valid(self):
        self.assertEqual(run("desktop-file-validate", ENTRY), (0, ""))

    def test_the_software_data_is_valid(self):
        code, said = run("appstreamcli", "validate", "--no-net", METAINFO)
        self.assertEqual(code, 0, said)

    def test_the_xml_is_well_formed(self):
        self.assertEqual(run("xmllint", "--noout", METAINFO, MIME), (0, ""))

    def test_the_type_is_known_by_ending_and_by_its_first_bytes(self):
        with tempfile.TemporaryDirectory() as folder:
            packages = pathlib.Path(folder, "packages")
            packages.mkdir()
            shutil.copy(MIME, packages)
            code, said = run("update-mime-database", folder)
            self.assertEqual(code, 0, said)
            endings = pathlib.Path(folder, "globs2").read_text().splitlines()
            self.assertIn(f"50:{MIME_TYPE}:*.ost", endings)
            self.assertIn(f"50:{MIME_TYPE}:*.pst", endings)
            # An entry: offset, length of the value in two bytes, the value.
            magic = pathlib.Path(folder, "magic").read_bytes()
            self.assertIn(b">0=" + struct.pack(">H", 4) + b"!BDN\n", magic)

    def test_all_goes_by_the_id_that_the_program_gives_its_windows(self):
        self.assertIn(f'setDesktopFileName(QStringLiteral("{ID}"))',
                      (SOURCE / "src/workflow/main.cpp").read_text("utf-8"))
        component = xml.parse(METAINFO).getroot()
        self.assertEqual(component.findtext("id"), ID)
        self.assertEqual(component.findtext("launchable"), ENTRY.name)
        self.assertEqual(component.findtext("icon"), ID)
        self.assertEqual(entry_values()["Icon"], ID)

    def test_the_newest_release_is_the_version_of_the_project(self):
        version = re.search(r"project\(velmora VERSION (\S+)", (SOURCE / "CMakeLists.txt").read_text()).group(1)
        self.assertEqual(xml.parse(METAINFO).getroot().find("releases")[0].get("version"), version)

    def test_the_entry_hands_no_file_over_since_the_wizard_reads_no_command_line(self):
        values = entry_values()
        self.assertEqual(values["Exec"], "velmora")
        self.assertNotIn("MimeType", values)

    def test_the_icon_is_rendered_in_every_size(self):
        rendered = pathlib.Path(os.environ["VELMORA_BUILD"], "packaging", "desktop")
        sizes = {int(picture.stem) for picture in rendered.glob("*.png")}
        self.assertEqual(sizes, {16, 22, 24, 32, 48, 64, 128, 256, 512})
        for size in sizes:
            head = (rendered / f"{size}.png").read_bytes()[:24]
            self.assertEqual(head[:8], b"\x89PNG\r\n\x1a\n")
            self.assertEqual(struct.unpack(">II", head[16:24]), (size, size))


if __name__ == "__main__":
    unittest.main()
