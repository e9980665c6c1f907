"""What is written about the program agrees with what it says itself."""

import re
import shutil
import subprocess
import unittest

import stores

DOCS = stores.SOURCE / "docs"


def help_text():
    return subprocess.run([stores.PROGRAM, "--help"], capture_output=True, text=True, check=True).stdout


OPTIONS = set(re.findall(r"^  (--[a-z-]+)", help_text(), re.M))
CODES = dict(re.findall(r"^  (\d+) +(.+)$", help_text(), re.M))


class Documents(unittest.TestCase):
    def test_the_help_names_options_and_codes(self):
        self.assertEqual(len(OPTIONS), 16)
        self.assertEqual(len(CODES), 9)

    def test_the_manual_names_the_same_options(self):
        manual = (DOCS / "velmora-convert.1").read_text()
        described = re.findall(r"^\.It Fl Fl ([a-z-]+)", manual, re.M)
        self.assertEqual({"--" + name for name in described}, OPTIONS)
        synopsis = manual[:manual.index(".Sh DESCRIPTION")]
        self.assertEqual({"--" + name for name in re.findall(r"Fl Fl ([a-z-]+)", synopsis)}, OPTIONS)

    def test_the_manual_names_the_same_exit_codes(self):
        manual = (DOCS / "velmora-convert.1").read_text()
        listed = manual[manual.index(".Sh EXIT STATUS"):manual.index(".Sh EXAMPLES")]
        found = {}
        for code, lines in re.findall(r"^\.It (\d+)\n((?:(?!\.It|\.El).*\n)+)", listed, re.M):
            found[code] = " ".join(lines.split("\n")).replace(".Fl Fl ", "--").strip()
        self.assertEqual(found, CODES)

    def test_mandoc_accepts_the_manual(self):
        self.assertIsNotNone(shutil.which("mandoc"), "mandoc is needed")
        checked = subprocess.run(["mandoc", "-T", "lint", DOCS / "velmora-convert.1"], capture_output=True, text=True)
        self.assertEqual((checked.returncode, checked.stdout), (0, ""))

    def test_the_exit_codes_page_names_the_same(self):
        page = (DOCS / "exit-codes.md").read_text()
        self.assertEqual(dict(re.findall(r"^\| (\d+) \| ([^|]+?) \|", page, re.M)), CODES)

    def test_the_guide_names_every_option(self):
        guide = (DOCS / "command-line.md").read_text()
        self.assertEqual(set(re.findall(r"^\| `(--[a-z-]+)", guide, re.M)), OPTIONS)

    def test_bash_completes_every_option(self):
        script = (f"source {DOCS / 'completions' / 'velmora-convert.bash'}; "
                  "COMP_WORDS=(velmora-convert --); COMP_CWORD=1; _velmora_convert; printf '%s\\n' \"${COMPREPLY[@]}\"")
        shown = subprocess.run(["bash", "-c", script], capture_output=True, text=True, check=True).stdout
        self.assertEqual(set(shown.split()), OPTIONS)

    def test_zsh_completes_every_option(self):
        completion = DOCS / "completions" / "_velmora-convert"
        self.assertEqual(set(re.findall(r"(--[a-z-]+)\[", completion.read_text())), OPTIONS)
        self.assertIsNotNone(shutil.which("zsh"), "zsh is needed")
        subprocess.run(["zsh", "-n", completion], check=True)

    def test_every_link_of_the_documents_leads_somewhere(self):
        for page in (stores.SOURCE / "README.md", *DOCS.glob("*.md")):
            for target in re.findall(r"\]\(([^)#:]+)(?:#[^)]*)?\)", page.read_text()):
                self.assertTrue((page.parent / target).exists(), f"{page.name}: {target}")


if __name__ == "__main__":
    unittest.main()
