"""The man page and the completion say what the program knows, no more and no less."""
import re
import shutil
import subprocess
import unittest
from pathlib import Path

from program import ProgramTest

PACKAGING = Path(__file__).resolve().parents[2] / "packaging"
COMMANDS = ["format", "check", "dump", "ranges", "roundtrip", "script"]
DIALECTS = ["mysql", "mariadb", "oracle", "postgresql", "sqlite", "sqlserver"]


class Manual(ProgramTest):
    def options(self, *command):
        """The long options in the help of a command."""
        output = self.run_program(*command, "--help").output.decode()
        return re.findall(r"^  (?:-\w, )?(--[\w-]+)", output, re.M)

    def complete(self, *words):
        """What bash would offer for the last of the words."""
        script = ('source "$1"; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); '
                  '_joinery_sql; printf "%s\\n" "${COMPREPLY[@]}"')
        done = subprocess.run(["bash", "-uc", script, "bash", PACKAGING / "completions/joinery-sql",
                               "joinery-sql", *words], capture_output=True, text=True, cwd=self.folder)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        return [word for word in done.stdout.split("\n") if word]

    def test_the_man_page_tells_every_command_and_option(self):
        page = (PACKAGING / "joinery-sql.1").read_text().replace("\\-", "-")
        for command in COMMANDS:
            self.assertIn(f".TP\n.B {command}\n", page)
            for option in self.options(command) + self.options():
                self.assertRegex(page, rf"\.TP\n\.BR? .*{option}\b")
        for word in DIALECTS: self.assertRegex(page, rf"\b{word}\b")

    def test_the_man_page_is_sound(self):
        if not shutil.which("groff"): self.skipTest("groff is not installed")
        done = subprocess.run(["groff", "-ww", "-man", "-Tutf8", PACKAGING / "joinery-sql.1"],
                              capture_output=True, text=True)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertGreater(len(done.stdout), 3000)

    def test_options_are_completed(self):
        self.assertEqual(sorted(self.complete("-")), sorted(self.options()))
        for command in COMMANDS:
            self.assertEqual(sorted(self.complete(command, "-")), sorted(self.options(command)))
        self.assertEqual(self.complete("format", "--in"), ["--in-place"])

    def test_words_are_completed(self):
        (self.folder / "my query.sql").touch()
        (self.folder / "more").mkdir()
        cases = [
            ([""], COMMANDS), (["r"], ["ranges", "roundtrip"]), (["x"], []),
            (["check", "-d", ""], DIALECTS), (["check", "--dialect", "m"], ["mysql", "mariadb"]),
            (["check", "--dialect", "=", "o"], ["oracle"]), (["check", "--dialect", "="], DIALECTS),
            (["check", "--schema", "m"], []), (["check", "m"], ["my query.sql", "more"]),
            (["check", "-d", "mysql", "my "], ["my query.sql"]), (["check", "--", "-"], []),
            (["roundtrip", "m"], []), (["check", "--", "mo"], ["more"]),
        ]
        for words, offered in cases:
            with self.subTest(words=words):
                self.assertEqual(sorted(self.complete(*words)), sorted(offered))


if __name__ == "__main__":
    unittest.main()
