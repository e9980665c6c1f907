"""What a person sees in a console: the bar, its color, and names in every script."""

import os
import pty
import subprocess
import unittest

import under_wine


class Console(under_wine.CommandUnderWine):
    def setUp(self):
        super().setUp()
        self.environment["TERM"] = "xterm"

    def test_it_gets_a_bar_in_color(self):
        text = self.on_a_terminal(NO_COLOR="")
        self.assertIn(b"\r\x1b[K[\x1b[32m####", text)
        self.assertIn(b"100% ", text)

    def test_no_color_is_respected(self):
        text = self.on_a_terminal(NO_COLOR="1")
        self.assertIn(b"\r\x1b[K[####", text)
        self.assertNotIn(b"\x1b[32m", text)

    def test_names_are_shown_as_they_are(self):
        source = self.work / "受信 Почта.ost"
        source.write_bytes(self.demo.read_bytes())
        main, side = pty.openpty()
        self.addCleanup(os.close, main)
        with subprocess.Popen([under_wine.COMMAND, "--no-progress", source, self.out], stdin=side, stdout=side,
                              stderr=subprocess.DEVNULL, env=self.environment) as child:
            os.close(side)
            text = b""
            try:
                while piece := os.read(main, 4096):
                    text += piece
            except OSError:
                pass  # nobody holds the other side any more
        self.assertEqual(0, child.returncode)
        self.assertIn("受信 Почта Converted.pst", text.decode("utf-8", "replace").replace("\r\n", ""))


if __name__ == "__main__":
    unittest.main()
