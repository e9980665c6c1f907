"""The user guide: it refers to what exists, stands alone once built, and says what the programs say."""

import base64
import html.parser
import os
import pathlib
import re
import subprocess
import unittest

SOURCE = pathlib.Path(__file__).resolve().parents[2]
GUIDE = SOURCE / "docs" / "guide" / "vm-oxp.html"
BUILT = pathlib.Path(os.environ["VELMORA_BUILD"], "wizard", "vm-oxp.html")


class Page(html.parser.HTMLParser):
    """Ids, links and pictures of a page, its terms, and the rows of the table of exit codes."""

    VOID = {"meta", "img", "br", "link"}

    def __init__(self, path):
        super().__init__()
        self.ids, self.links, self.pictures, self.terms, self.exit_codes = [], [], [], [], []
        self.other_references, self.open, self.unclosed = [], [], []
        self._term, self._cell, self._in_codes = None, None, False
        self.feed(path.read_text("utf-8"))
        self.unclosed += self.open

    def handle_starttag(self, tag, pairs):
        values = dict(pairs)
        if tag not in self.VOID:
            self.open.append(tag)
        if "id" in values:
            self.ids.append(values["id"])
        if tag == "a":
            self.links.append(values["href"])
        elif tag == "img":
            self.pictures.append(values)
        elif "src" in values or "href" in values or tag in ("script", "link"):
            self.other_references.append((tag, values))
        if tag == "dt":
            self._term = ""
        if tag == "table":
            self._in_codes = values.get("id") == "exit-code-table"
        if tag == "tr" and self._in_codes:
            self.exit_codes.append([])
        if tag == "td" and self._in_codes:
            self._cell = ""

    def handle_data(self, text):
        if self._term is not None:
            self._term += text
        if self._cell is not None:
            self._cell += text

    def handle_endtag(self, tag):
        if self.open and self.open[-1] == tag:
            self.open.pop()
        else:
            self.unclosed.append(tag)
        if tag == "dt":
            self.terms.append(" ".join(self._term.split()))
            self._term = None
        if tag == "td" and self._cell is not None:
            self.exit_codes[-1].append(" ".join(self._cell.split()))
            self._cell = None


def texts_of_the_programs():
    """All string literals of the sources that say something to the user, in one line."""
    text = ""
    for path in (*SOURCE.glob("src/resources/*.*"), SOURCE / "src/conversion/notices.cpp"):
        for literal in re.findall(r'"((?:[^"\\]|\\.)*)"', path.read_text("utf-8")):
            text += literal.replace(r"\n", " ")
    return " ".join(text.split())


class Guide(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.page = Page(GUIDE)
        cls.text = GUIDE.read_text("utf-8")

    def test_every_element_is_closed(self):
        self.assertEqual(self.page.unclosed, [])

    def test_every_link_leads_to_a_place_of_the_page(self):
        self.assertGreater(len(self.page.links), 20)
        self.assertEqual([link for link in self.page.links if link[:1] != "#" or link[1:] not in self.page.ids], [])
        self.assertEqual(len(self.page.ids), len(set(self.page.ids)))

    def test_every_picture_is_there_and_described(self):
        self.assertGreaterEqual(len(self.page.pictures), 6)
        for picture in self.page.pictures:
            self.assertTrue((GUIDE.parent / picture["src"]).is_file(), picture["src"])
            self.assertGreater(len(picture["alt"]), 20, picture["src"])

    def test_the_built_page_stands_alone(self):
        built = Page(BUILT)
        self.assertEqual(len(built.pictures), len(self.page.pictures))
        for picture, source in zip(built.pictures, self.page.pictures):
            form, _, data = picture["src"].partition(",")
            self.assertEqual(form, "data:image/png;base64")
            self.assertEqual(base64.b64decode(data, validate=True), (GUIDE.parent / source["src"]).read_bytes())
        self.assertEqual(built.other_references, [])
        self.assertNotRegex(self.text, r"url\(|@import")

    def test_it_is_readable_in_light_and_dark(self):
        light, dark = re.findall(r":root \{(.*?)\}", self.text, re.S)
        for colors in (light, dark):
            self.assertEqual(set(re.findall(r"--[a-z-]+(?=:)", colors)), set(re.findall(r"var\((--[a-z-]+)\)", self.text)))
            value = dict(re.findall(r"(--[a-z-]+): (#\w{6})", colors))
            for ink, paper in (("--ink", "--paper"), ("--quiet", "--paper"), ("--accent", "--paper"),
                               ("--ink", "--panel"), ("--quiet", "--panel"), ("--ink", "--calm"), ("--ink", "--care"),
                               ("--accent", "--care")):
                self.assertGreaterEqual(contrast(value[ink], value[paper]), 4.5, f"{ink} on {paper}")

    def test_options_and_exit_codes_are_those_of_the_program(self):
        shown = subprocess.run([os.environ["VELMORA_CONVERT"], "--help"], capture_output=True, text=True,
                               check=True).stdout
        self.assertEqual(set(re.findall(r"<code>(--[a-z-]+)", self.text)),
                         set(re.findall(r"^  (--[a-z-]+)", shown, re.M)))
        told = {row[0]: row[1] for row in self.page.exit_codes if row}
        self.assertEqual(told, dict(re.findall(r"^  (\d+) +(.+)$", shown, re.M)))

    def test_messages_are_quoted_as_the_programs_write_them(self):
        texts = texts_of_the_programs()
        quoted = [message for term in self.page.terms for message in re.findall("“([^”]+)”", term)]
        self.assertGreater(len(quoted), 8)
        for message in quoted:
            self.assertIn(message, texts)


def contrast(one, other):
    """The contrast of two colors, 1 to 21."""
    def luminance(color):
        parts = [int(color[i:i + 2], 16) / 255 for i in (1, 3, 5)]
        red, green, blue = (p / 12.92 if p <= 0.03928 else ((p + 0.055) / 1.055) ** 2.4 for p in parts)
        return 0.2126 * red + 0.7152 * green + 0.0722 * blue
    low, high = sorted((luminance(one), luminance(other)))
    return (high + 0.05) / (low + 0.05)


if __name__ == "__main__":
    unittest.main()
