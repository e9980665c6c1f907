"""The program for Windows is one file: what it is linked with comes with every Windows."""

import re
import subprocess
import unittest

import under_wine

SYSTEM = {"ADVAPI32.dll", "KERNEL32.dll", "msvcrt.dll", "ole32.dll", "SHELL32.dll"}


def headers():
    return subprocess.run(["x86_64-w64-mingw32-objdump", "-p", under_wine.PROGRAM], capture_output=True, text=True,
                          check=True).stdout


class ImportTable(unittest.TestCase):
    def test_only_libraries_of_the_system_are_needed(self):
        needed = set(re.findall(r"DLL Name: (\S+)", headers()))
        self.assertIn("KERNEL32.dll", needed)
        self.assertEqual(set(), needed - SYSTEM)

    def test_it_has_the_stack_that_it_has_on_other_systems(self):
        self.assertEqual(8 << 20, int(re.search(r"^SizeOfStackReserve\s+([0-9a-f]+)", headers(), re.M)[1], 16))


if __name__ == "__main__":
    unittest.main()
