"""script: the examples are what they say, and whatever a script holds, its line is told."""
import re
import sqlite3
import subprocess
import unittest
from pathlib import Path

from program import IO, OK, PROGRAM, REFUSED, USAGE, ProgramTest

ROOT = Path(__file__).resolve().parents[2]
MANUAL = (ROOT / "docs/scripts.md").read_text()
EXAMPLES = {path.name: path.read_text() for path in sorted((ROOT / "examples/scripts").glob("*.jsql"))}
EXAMPLES["scripts.md"] = re.search(r"^```\n(.*?)^```", MANUAL, re.S | re.M)[1]
SHOP = """dialect postgresql
schema shop
table orders id customer_id total
table customers id name
key orders.customer_id -> customers.id
"""

# (line behind SHOP, part of the message)
REFUSED_LINES = [
    ("frobnicate orders", 'there is no command "frobnicate"'), ("'add' orders", "expected a command"),
    ("; add orders", "expected a command"), (":", "no command before the colon"),
    ("add", "expected a table"), ("add nowhere", "there is no table shop.nowhere"),
    ("add other.orders", "there is no table other.orders"), ('add "Orders"', "but orders"), ("add a.b.c", "SCHEMA.NAME"),
    ("add orders.", "expected a name behind the dot"), ("add orders AS", "expected an alias"),
    ("add orders too many", "expected the end of the line, found too"),
    ('add "orders', "not closed"), ("add (SELECT", "never closed"),
    ("add (SELECT 1) a, customers", "more than one source"), ("add ORDERS.", "behind the dot"),
    ("remove orders", "no source of the query is called orders"), ("remove 0", "row 0 of from is no"),
    ("remove 99999999999", "expected a source"), ("alias customers c", "is called customers"),
    ("tick", "expected a field"), ("tick id", "SOURCE.FIELD"), ("tick orders.id", "orders"),
    ("link a b c", "is called a"), ("unlink 7", "from has no row 7"), ("unlink -1", "expected"),
    ("join 0 left", "row 0 of from is no join"), ("join 1", "from has no row 1"),
    ("on 0 add 1 = 1", "row 0 of from is no join"),
    ("tick all and", "expected *"), ("show rows on", "expected the row of a join"),
    ("show rows nowhere", "there is no clause"), ("show nothing", "no view"), ("show", "what to show"),
    ("where", "expected an edit"), ("where explode 1", 'no edit "explode" of rows: one of add append'),
    ("where add ORDER BY 1", "unexpected"), ("where add 1 = 1; DROP TABLE t", ""),
    ("where add 1 = 1 LIMIT 3", "more than belongs"), ("where add a = 'b", ""),
    ("where remove 1", "where has no row 1, only 0 to 0"), ("where remove 2-1", "no range from 2 to 1"),
    ("where remove 0-999999999", "no range"), ("where move 0 to 5", "where has no row 5"),
    ("where negate 0", "row 0 of where is no condition"), ("where bracket 0", "cannot be put"),
    ("where operator 0 =", "no comparison"), ("select move 0 to -1", "expected the row"),
    ("select add", "expected a column"), ("select add 1 FROM customers", "more than belongs"),
    ("select add DISTINCT id", "more than belongs"), ("from up 0", 'know no "up"'),
    ("limit many", "expected the end of the line"), ("limit percent", "go with a count"), ("limit 99999999999", "expected a count"),
    ("layer", "push or pop"), ("layer pop", "root layer"), ("layer push orders", "is called orders"),
    ("table orders id", "already"), ("table t a a", "comes twice"), ("table t", "name of a field"),
    ("key orders.id -> nowhere.id", "no table shop.nowhere"), ("key orders.id", "expected ->"),
    ("key orders.id -> customers.nothing", "no field nothing"), ("dialect db2", "no dialect db2"),
    ("key orders.id -> customers.id, customers.id -> orders.id", "same two tables"),
    ("open nowhere.sqlite", "cannot read nowhere.sqlite"), ("open .", "cannot read ."),
    ("open broken.sqlite", "broken.sqlite"), ("open empty.sql", "empty.sql"),
    ("open garbage.sqlite", "no SQLite database"), ("parse", "expected a SELECT"),
    ("parse DROP TABLE t", "SELECT"), ("show sql:\nend", "takes no block"),
    ("expect", "expected a command"), ("expect sql", "colon"), ("expect sql:", "no end"),
    ("expect nothing:\nend", "no view"), ("expect error show sql", "was not"),
    ("expect error:\nend", "expected a command"), ("expect sql:\nSELECT\nend", 'line 2 is "\t*"'),
]


# What takes words only up to its own end.
ENDING_COMMANDS = """remove orders|alias orders o|link orders.id customers.id|unlink 1|join 1 left|
unlink orders.customer_id customers.id|tick orders.id|tick all|untick all orders|schema other|
where remove 0|where negate 0|where gate 1 or|where bracket 0 1|where move 1 to 0|where up 1|
select alias 0 x|from insert 0 orders AS o|from unbracket 0|layer pop|layer push orders|limit 5|
key orders.id -> customers.id|add orders AS o|dialect mysql""".replace("\n", "").split("|")


# What the query of SHOP with both tables, a function and a nameless subquery does not allow.
UNFIT_COMMANDS = """unlink orders.id customers.id|tick orders.nothing|
link orders.id customers.id, customers.id orders.id|link orders j|join 1 sideways|layer up|
layer push orders|from replace 1 orders AS o|where unbracket 0|on 3 add 1 = 1""".replace(
    "\n", "").split("|")


class Examples(ProgramTest):
    def setUp(self):
        super().setUp()
        database = sqlite3.connect(self.folder / "city_bikes.sqlite")
        database.executescript((ROOT / "resources/sample/city_bikes.sql").read_text())
        database.close()

    def run_script(self, lines):
        return self.run_program("script", self.file("script.jsql", "\n".join(lines).encode()).name)

    def test_every_example_says_what_is_so(self):
        self.assertGreaterEqual(len(EXAMPLES), 10)
        for name, text in EXAMPLES.items():
            with self.subTest(example=name):
                self.expect(self.run_script(text.split("\n")), OK, b"")

    def test_a_wrong_expectation_fails_in_its_line(self):
        for name, text in EXAMPLES.items():
            lines = text.split("\n")
            for end in (i for i, line in enumerate(lines) if line == "end"):
                begin = max(i for i in range(end) if lines[i].endswith(":") and lines[i][0] != "#")
                if not lines[begin].startswith("expect"): continue
                with self.subTest(example=name, line=begin + 1):
                    run = self.run_script(lines[:end] + ["one line more"] + lines[end:])
                    self.expect(run, REFUSED, b"", b"script.jsql:%d: " % (begin + 1))
                    self.assertIn(b'expected "one line more"', run.errors)


class Hostile(ProgramTest):
    def test_every_line_that_makes_no_sense_is_refused(self):
        self.file("broken.sqlite", b"SQLite format 3\0" + b"\xff" * 5000)
        self.file("garbage.sqlite", bytes(range(256)) * 20)
        self.file("empty.sql", b"")
        number = SHOP.count("\n") + 1
        for line, message in REFUSED_LINES:
            with self.subTest(line=line):
                run = self.run_program("script", given=(SHOP + line + "\n").encode())
                self.expect(run, REFUSED, b"", f"<stdin>:{number}: ".encode())
                self.assertIn(message.encode(), run.errors)

    def test_a_command_with_words_too_many_changes_nothing(self):
        self.assertEqual(len(ENDING_COMMANDS), 25)
        given = (SHOP + "add orders\nadd customers\ntick orders.id\nwhere add id = 1 OR id = 2\n"
                 "show statement\n" + "".join(f"expect error {command} too many\n"
                                             for command in ENDING_COMMANDS) + "show statement\n")
        run = self.run_program("script", given=given.encode())
        self.expect(run, OK)
        half = len(run.output) // 2
        self.assertEqual(run.output[:half], run.output[half:])

    def test_what_does_not_fit_the_query_is_refused(self):
        given = (SHOP + "add orders\nadd customers\nadd json_each('[]') AS j\nadd (SELECT 1 AS n)\n"
                 "where add orders.id = 1\nlayer push 6\nshow layers\nlayer pop\n" +
                 "".join(f"expect error {command}\n" for command in UNFIT_COMMANDS) +
                 "parse SELECT 1 FROM orders JOIN customers USING (id)\nexpect error on 1 add 1 = 1\n")
        run = self.run_program("script", given=given.encode())
        self.expect(run, OK, b"0 (Main query)\n1 (Subquery 4)\n")

    def test_what_is_no_text_is_refused(self):
        for given, message in [
            (b"add \xff\n", b":1: line 1 is not valid UTF-8"), (b"\n# \xc3\n", b":2: line 2 is not"),
            (b"\nadd a\0b\n", b"line 2 is no text"), (b"add " + b"x" * (17 << 20), b"longer than"),
            (b"parse:\n\xff\nend\n", b":1: line 2 is not"), (b"add orders\n", b"no dialect"),
        ]:
            with self.subTest(given=given[:20]):
                self.expect(self.run_program("script", given=given), REFUSED, b"", message)

    def test_large_scripts_are_run(self):
        fields = " ".join(f"f{i}" for i in range(20000))
        given = f"dialect sqlite\nschema main\ntable t {fields}\nadd t\ntick all t\nshow sql\n"
        run = self.run_program("script", given=given.encode())
        self.expect(run, OK)
        self.assertEqual(run.output.count(b"t.f"), 20000)
        nested = "(" * 9999 + "1 = 1" + ")" * 9999
        self.expect(self.run_program("script", given=f"{SHOP}where add {nested}".encode()), REFUSED,
                    errors=b":6: ")


class Runs(ProgramTest):
    def test_a_script_ends_at_its_first_refusal_and_the_next_one_begins(self):
        self.file("a.jsql", b"dialect mysql\nadd x\nshow sql\n")
        self.file("b.jsql", b"\xef\xbb\xbf# a mark\r\n-- and more\r\nshow layers\r\n\r\n")
        run = self.run_program("script", "-d", "sqlite", "a.jsql", "none.jsql", "b.jsql")
        self.expect(run, IO, b"0 (Main query)\n", b"a.jsql:2: ")
        self.assertIn(b"cannot read none.jsql", run.errors)
        going = self.run_program("script", "--keep-going", "a.jsql")
        self.expect(going, REFUSED, b"SELECT\n\t*\n", b"a.jsql:2: ")

    def test_files_are_found_beside_the_script(self):
        (self.folder / "below").mkdir()
        self.file("below/query.sql", b"select 1 as one\n")
        self.file("below/a.jsql", b"open query.sql\nshow sql\n")
        run = self.run_program("script", "-d", "oracle", "below/a.jsql")
        self.expect(run, OK, b"SELECT\n\t1 AS ONE\n")

    def test_blanks_that_do_not_show_do_not_count(self):
        for block, code in [("\t* \t", OK), ("\t *", REFUSED), ("\t*\n", REFUSED), ("*", REFUSED)]:
            run = self.run_program("script", "-d", "mysql", given=f"expect sql:\nSELECT \n{block}\nend".encode())
            self.assertEqual(run.code, code, (block, run.errors))

    def test_options_set_the_stage(self):
        run = self.run_program("script", "-d", "sqlserver", "--schema", "dbo",
                               given=b"table [a b] id\nadd [a b]\ntick [a b].id\nshow sql")
        self.expect(run, OK, b"SELECT\n\t[a b].id\nFROM\n\tdbo.[a b]\n")
        self.expect(self.run_program("script", "-d", "db2"), USAGE, b"", b"db2")

    def test_an_answer_is_there_before_the_next_line_is_asked(self):
        with subprocess.Popen([PROGRAM, "script", "-d", "mysql"], stdin=subprocess.PIPE,
                              stdout=subprocess.PIPE) as process:
            for number in range(3):
                process.stdin.write(b"limit %d\nshow rows where\n" % number)
                process.stdin.flush()
                self.assertRegex(process.stdout.readline(), b"^0: .*placeholder")
            process.stdin.close()
        self.assertEqual(process.returncode, OK)

    def test_a_closed_output_ends_it(self):
        done = subprocess.run(["bash", "-c", '"$0" script -d mysql >/dev/full', PROGRAM],
                              input=b"show sql\n" * 3, capture_output=True)
        self.assertEqual(done.returncode, IO)
        self.assertIn(b"No space left", done.stderr)

    def test_the_manual_tells_every_command(self):
        listed = self.run_program("script", "--help").output.decode()
        names = re.findall(r"^  ([a-z]+) .*  \w", listed.split("Commands:")[1].split("Exit")[0], re.M)
        self.assertGreater(len(names), 30)
        for name in names: self.assertRegex(MANUAL, rf"`(?:[a-z]+ )*{name}\b")


if __name__ == "__main__":
    unittest.main()
