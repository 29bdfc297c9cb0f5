"""The man page and the completion of joinery-desk know the options that its help tells."""
import os
import re
import subprocess
import unittest
from pathlib import Path

PACKAGING = Path(__file__).resolve().parents[2] / "packaging"
PROGRAM = os.environ.get("JOINERY_DESK", "joinery-desk")


class Manual(unittest.TestCase):
    def options(self):
        text = subprocess.run([PROGRAM, "--help"], capture_output=True, text=True, check=True,
                              env={**os.environ, "QT_QPA_PLATFORM": "offscreen"}).stdout
        return re.findall(r"^  (?:-\w, )?(--[\w-]+)", text, re.M)

    def complete(self, *words):
        script = ('source "$1"; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); '
                  '_joinery_desk; printf "%s\\n" "${COMPREPLY[@]}"')
        done = subprocess.run(["bash", "-uc", script, "bash", PACKAGING / "completions/joinery-desk",
                               "joinery-desk", *words], capture_output=True, text=True)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        return done.stdout.split("\n")[:-1]

    def test_the_man_page_tells_every_option(self):
        page = (PACKAGING / "joinery-desk.1").read_text().replace("\\-", "-")
        for option in self.options():
            if not option.startswith(("--help", "--version")):
                self.assertRegex(page, rf"\.TP\n\.BI? {option}\b")

    def test_options_and_clauses_are_completed(self):
        self.assertEqual(sorted(self.complete("--")), sorted(self.options()))
        self.assertEqual(self.complete("--tab", "G"), [r"GROUP\ BY"])


if __name__ == "__main__":
    unittest.main()
