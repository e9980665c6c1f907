"""Names of files and folders of every form, at any length: the new store stands where the program for this machine puts
it, with the same bytes."""

import unittest

import under_wine
from under_wine import windows_path

NAMES = {
    "blanks": "my old mail  of 2019",
    "points": "mail.of.2019",
    "kana": "受信トレイ メール",
    "cyrillic": "Почта за год",
    "emoji": "mail \U0001F4E7\U0001F600",
    "marks": "a'b `c` $d %e% ^f& (g) [h] {i} #j; k=l,m!",
    "dash": "-mail",
    "accents": "cafe\u0301 caf\u00e9",
    "long": "n" * 200,
    "nothing": "",
}


class Names(under_wine.UnderWine):
    def copy_of_demo(self, name):
        source = self.work / name
        source.write_bytes(self.demo.read_bytes())
        return source

    def test_a_store_of_each_name_becomes_the_same_in_a_folder_of_that_name(self):
        for kind, name in NAMES.items():
            for options in ((), ("--complete",)):
                with self.subTest(kind=kind, options=options):
                    made = self.compare_with_twin(self.copy_of_demo(name + ".ost"), *options, below=f"to {name}!")
                    self.assertEqual(1, sum(file.endswith("Converted.pst") for file in made), made.keys())

    def test_a_destination_of_more_than_600_characters_is_none_too_long(self):
        below = "/".join(letter * 200 for letter in "abc")
        for options in ((), ("--complete", "--verify")):
            with self.subTest(options=options):
                self.compare_with_twin(self.copy_of_demo("m" * 100 + ".ost"), *options, below=below)

    def test_a_source_at_the_end_of_a_long_path_is_found(self):
        folder = self.work.joinpath(*(letter * 200 for letter in "abc"))
        folder.mkdir(parents=True)
        source = folder / "mail.ost"
        source.write_bytes(self.demo.read_bytes())
        self.compare_with_twin(source)
        ended = self.run_program("--quiet", windows_path(source), windows_path(self.out))
        self.assertIn(ended.returncode, (0, 3), ended.stderr)

    def test_a_backslash_at_the_end_of_a_destination_says_nothing(self):
        for end in ("", "\\", "\\\\", "/"):
            with self.subTest(end=end):
                under_wine.forget_profiles()
                folder = self.work / f"out{len(end)}{end[:1] == '/'}"
                folder.mkdir()
                ended = self.run_program("--quiet", windows_path(self.demo), windows_path(folder) + end)
                self.assertIn(ended.returncode, (0, 3), ended.stderr)
                self.assertEqual(["demo Converted0", "demo Converted0/demo Converted.pst"], self.produced(folder))

    def test_a_slash_begins_a_path_and_no_option(self):
        ended = self.run_program("--quiet", str(self.demo), "/no/such/folder")
        self.assertEqual(73, ended.returncode, ended.stderr)

    def test_what_is_said_and_reported_names_the_store_in_the_form_of_the_system(self):
        ended = self.run_program(windows_path(self.demo), windows_path(self.out))
        self.assertIn("Recovered at: " + windows_path(self.out / "demo Converted0" / "demo Converted.pst"), ended.stdout)
        self.assertNotIn("\r", ended.stdout)


if __name__ == "__main__":
    unittest.main()
