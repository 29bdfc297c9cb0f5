"""The commands on files: what they print, what they leave alone, how they end."""
import os
import signal
import stat
import subprocess
import unittest

from program import IO, OK, PROGRAM, REFUSED, USAGE, ProgramTest

QUERY = b"select a.id, 'x' as b from main.t as a where a.id = 1;\n"
WRITTEN = b"SELECT\n\ta.id, \n\t'x' AS b\nFROM\n\tt AS a\nWHERE\n\ta.id = 1"
OPTIONS = ("-d", "sqlite", "--schema", "main")


class Format(ProgramTest):
    def test_only_the_statement_changes(self):
        cases = [
            (QUERY, WRITTEN + b";\n"),
            (b"-- by me\n\n" + QUERY + b"-- end", b"-- by me\n\n" + WRITTEN + b";\n-- end\n"),
            (b"\xef\xbb\xbf" + QUERY, b"\xef\xbb\xbf" + WRITTEN + b";\n"),
            (QUERY[:-2], WRITTEN + b"\n"),
            (b"select '\xff\n', '\xc3\xa4' from t", b"SELECT\n\t'\xff\n', \n\t'\xc3\xa4'\nFROM\n\tt\n"),
            (b"-- x\r\nselect 'a\nb', f('c\r\nd',\r\n1)\r\nfrom t;\r\n",
             b"-- x\r\nSELECT\r\n\t'a\nb', \r\n\tf('c\r\nd',\r\n1)\r\nFROM\r\n\tt;\r\n"),
        ]
        for given, wanted in cases:
            with self.subTest(given=given):
                self.expect(self.run_program("format", *OPTIONS, given=given), OK, wanted)

    def test_a_dropped_comment_is_told(self):
        given = "select 'ä' /* kept? */, b from t".encode()
        run = self.run_program("format", *OPTIONS, given=given)
        self.expect(run, OK, errors=b"<stdin>:1:12: warning:")
        kept = self.run_program("format", *OPTIONS, given=b"select f(/* kept */ 1) from t")
        self.expect(kept, OK, b"SELECT\n\tf(/* kept */ 1)\nFROM\n\tt\n")

    def test_in_place_writes_through_a_link_and_keeps_the_mode(self):
        file = self.file("query.sql", QUERY)
        file.chmod(0o640)
        (self.folder / "link.sql").symlink_to(file)
        self.expect(self.run_program("format", *OPTIONS, "--in-place", "link.sql"), OK, b"")
        self.assertEqual(file.read_bytes(), WRITTEN + b";\n")
        self.assertEqual(stat.S_IMODE(file.stat().st_mode), 0o640)
        self.assertTrue((self.folder / "link.sql").is_symlink())
        self.assertEqual(len(list(self.folder.iterdir())), 2, "something was left behind")

    def test_in_place_leaves_alone_what_would_be_lost(self):
        good = self.file("good.sql", QUERY)
        lost = [self.file("union.sql", b"select 1 union select 2\n"), self.file("empty.sql", b""),
                self.file("comment.sql", b"select a -- of the month\nfrom t\n"),
                self.file("two.sql", b"select 1; drop table t;\n")]
        before = [path.read_bytes() for path in lost]
        run = self.run_program("format", *OPTIONS, "-i", *(p.name for p in lost), "good.sql")
        self.expect(run, REFUSED, b"", b"comment.sql:1:10: ")
        self.assertEqual([path.read_bytes() for path in lost], before)
        self.assertEqual(good.read_bytes(), WRITTEN + b";\n", "files behind refused ones are done")

    def test_in_place_replaces_no_pipe(self):
        os.mkfifo(self.folder / "pipe")
        process = subprocess.Popen(["sh", "-c", "cat > pipe"], stdin=subprocess.PIPE, cwd=self.folder)
        process.stdin.write(QUERY)
        process.stdin.close()
        self.expect(self.run_program("format", *OPTIONS, "-i", "pipe"), IO, b"", b"pipe")
        process.wait()
        self.assertTrue(stat.S_ISFIFO((self.folder / "pipe").stat().st_mode))


class Check(ProgramTest):
    def test_it_is_silent_on_what_is_accepted(self):
        self.expect(self.run_program("check", *OPTIONS, given=QUERY), OK, b"")

    def test_it_finds_what_is_refused_and_where(self):
        cases = [
            ("select 'äöü'\r\n  from t union select 1".encode(), b"2:10: "),
            ("select 'äöü', 'ä' union select 1".encode(), b"1:19: "),
            (b"\xef\xbb\xbfselect 1 union select 2", b"1:10: "),
            (b"select 1\runion select 2", b"2:1: "),
            (b"select 1 \0 from t", b"1:10: "),
            (b"select a from", b"1:14: "),
            (b"select 1;;\n select ';'", b"2:2: "),
            (b" update t set a = 1", b"1:2: "),
            (b"  \n", b"2:1: "),
            (b"-- nothing\n", b"2:1: "),
        ]
        for given, place in cases:
            with self.subTest(given=given):
                run = self.run_program("check", *OPTIONS, given=given)
                self.expect(run, REFUSED)
                self.assertRegex(run.output, b"^<stdin>:" + place + b"[^\n]{5,}\n$")
                self.assertNotRegex(run.output, b"line \\d+, column", "the place is told once")

    def test_every_file_is_looked_at(self):
        self.file("good.sql", QUERY)
        self.file("bäd.sql", b"select 1 union select 2")
        for locale in ("C", "C.UTF-8"):
            run = self.run_program("check", *OPTIONS, "good.sql", "bäd.sql", "none.sql", "bäd.sql",
                                   env={**os.environ, "LC_ALL": locale})
            self.expect(run, IO, errors=b"none.sql: ")
            lines = run.output.splitlines()
            self.assertEqual(len(lines), 2, run.output)
            self.assertTrue(lines[1].startswith("bäd.sql:1:10: ".encode()), lines)

    def test_names_that_look_like_options(self):
        self.file("-d", QUERY)
        self.expect(self.run_program("check", *OPTIONS, "--", "-d"), OK, b"")
        self.expect(self.run_program("check", *OPTIONS, "-", given=QUERY), OK, b"")


class DumpAndRanges(ProgramTest):
    def test_dump_shows_the_model(self):
        run = self.run_program("dump", *OPTIONS, given=QUERY)
        self.expect(run, OK)
        for line in (b'    field "id" path=["a"] source=1\n', b'    table "t" path=["main"] as="a"\n'):
            self.assertIn(line, run.output)

    def test_several_texts_are_told_apart(self):
        self.file("a.sql", QUERY)
        run = self.run_program("dump", *OPTIONS, "a.sql", "a.sql")
        self.expect(run, OK)
        self.assertEqual(run.output.count(b"==> a.sql <==\nstatement\n"), 2)

    def test_ranges_tell_where_the_text_stands(self):
        given = "select 'ä\t\"' as \"y\", f(n) from (select 1 as n) s where (n = 1 or n = 2) and n in (1, 2)"
        run = self.run_program("ranges", "-d", "postgresql", given=given.encode())
        self.expect(run, OK)
        text, listing = run.output.split(b"\n\n")
        entries = [line.split(b"\t") for line in listing.splitlines()]
        escapes = ((b"\\", b"\\\\"), (b'"', b'\\"'), (b"\n", b"\\n"), (b"\t", b"\\t"))
        previous = (-1, 0)
        for location, length, _, excerpt in entries:
            stretch = text[int(location):int(location) + int(length)]
            for plain, escaped in escapes: stretch = stretch.replace(plain, escaped)
            if excerpt.endswith(b'"...'): self.assertTrue(stretch.startswith(excerpt[1:-4]))
            else: self.assertEqual(excerpt, b'"' + stretch + b'"')
            here = (int(location), -int(length))
            self.assertLessEqual(previous, here, "what encloses comes first")
            previous = here
        self.assertEqual(entries[0][:3], [b"0", str(len(text)).encode(), b"statement"])
        kinds = {entry[2] for entry in entries}
        self.assertEqual(kinds, {b"statement", b"subquery", b"bracket", b"compare", b"value",
                                 b"field", b"expression"})
        self.assertEqual(run.output, self.run_program("ranges", "-d", "postgresql",
                                                      given=given.encode()).output)


class CommandLine(ProgramTest):
    def test_what_makes_no_sense_is_told(self):
        cases = [
            ((), b"command is missing"), (("frmat",), b"frmat"), (("--nope",), b"nope"),
            (("check",), b"--dialect is missing"), (("check", "-d"), b"d"),
            (("check", "-d", "db2"), b"db2"), (("check", *OPTIONS, "--in-place", "x"), b"in-place"),
            (("check", *OPTIONS, "--details"), b"details"), (("format", *OPTIONS, "-i"), b"in-place"),
            (("format", *OPTIONS, "-i", "-"), b"in-place"), (("check", *OPTIONS, ""), b"name"),
            (("roundtrip", "file.jsonl"), b"no files"), (("roundtrip", "-d", "db2"), b"db2"),
        ]
        for arguments, told in cases:
            with self.subTest(arguments=arguments):
                run = self.run_program(*arguments)
                self.expect(run, USAGE, b"", told)
                self.assertIn(b"--help", run.errors)

    def test_help_needs_nothing(self):
        for command in ("format", "check", "dump", "ranges", "roundtrip", "script"):
            run = self.run_program(command, "--help", stdin=subprocess.DEVNULL)
            self.expect(run, OK)
            self.assertTrue(run.output.startswith(b"Usage: joinery-sql %s [options]" % command.encode()))
            self.assertIn(b"  %s " % command.encode(), self.run_program("--help").output)
        self.assertRegex(self.run_program("--version").output, rb"^joinery-sql \d+\.\d+\.\d+\n$")

    def test_no_display_is_needed(self):
        bare = {"PATH": os.environ["PATH"], "QT_QPA_PLATFORM": "none"}
        self.expect(self.run_program("check", *OPTIONS, given=QUERY, env=bare), OK, b"")


class Streams(ProgramTest):
    def shell(self, line):
        return subprocess.run(["bash", "-c", line, PROGRAM], input=QUERY, capture_output=True,
                              cwd=self.folder)

    def test_what_cannot_be_read_or_written_is_told(self):
        self.file("query.sql", QUERY)
        for line, told in [
            ('"$0" dump -d sqlite >/dev/full', b"No space left"),
            ('"$0" check -d sqlite <<<"select" >/dev/full', b"No space left"),
            ('"$0" roundtrip <<<"{}" >/dev/full', b"No space left"),
            ('"$0" --help >/dev/full', b"No space left"),
            ('"$0" format -d sqlite query.sql >&-', b"Bad file descriptor"),
            ('"$0" format -d sqlite <&-', b"Bad file descriptor"),
            ('"$0" roundtrip <&-', b"Bad file descriptor"),
            ('"$0" roundtrip </', b"directory"),
            ('"$0" check -d sqlite .', b"directory"),
            ('"$0" check -d sqlite none.sql', b"none.sql"),
        ]:
            with self.subTest(line=line):
                done = self.shell(line)
                self.assertEqual(done.returncode, IO, done.stderr)
                self.assertIn(told, done.stderr)

    def test_a_reader_that_has_gone_ends_it(self):
        for is_signalled, code, told in [(True, -signal.SIGPIPE, b""), (False, IO, b"Broken pipe")]:
            reading, writing = os.pipe()
            os.close(reading)
            run = self.run_program("roundtrip", given=b"{}\n" * 9, stdout=writing,
                                   restore_signals=is_signalled)
            os.close(writing)
            self.assertEqual(run.code, code)
            self.assertIn(told, run.errors)


if __name__ == "__main__":
    unittest.main()
