"""Runs joinery-sql for the tests."""
import os
import subprocess
import tempfile
import unittest
from pathlib import Path

PROGRAM = os.environ.get("JOINERY_SQL", "joinery-sql")
OK, REFUSED, USAGE, IO = range(4)


class Run:
    def __init__(self, arguments, given=b"", **how):
        how.setdefault("stdout", subprocess.PIPE)
        if "stdin" not in how: how["input"] = given
        done = subprocess.run([PROGRAM, *arguments], stderr=subprocess.PIPE, **how)
        self.code, self.output, self.errors = done.returncode, done.stdout, done.stderr


class ProgramTest(unittest.TestCase):
    """A test with a folder of its own, in which the program runs."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)

    def file(self, name, content):
        path = self.folder / name
        path.write_bytes(content)
        return path

    def run_program(self, *arguments, **how):
        return Run(arguments, cwd=self.folder, **how)

    def expect(self, run, code, output=None, errors=None):
        """Output is compared whole, of errors a part; no errors where the program succeeds."""
        self.assertEqual(run.code, code, run.errors)
        if output is not None: self.assertEqual(run.output, output)
        if errors is None: self.assertEqual(run.errors, b"")
        else: self.assertIn(errors, run.errors)
