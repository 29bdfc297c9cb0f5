"""roundtrip: one answer for each line, whatever the line is."""
import json
import resource
import subprocess
import unittest

from program import OK, PROGRAM, ProgramTest

ASKED = {"dialect": "sqlite", "sql": "select 1"}


def line(**members):
    return json.dumps({**ASKED, **members}).encode()


def raw(identity, rest=b'"dialect":"sqlite","sql":"select 1"'):
    return b'{"id":' + identity + b"," + rest + b"}"


# (line, id as it comes back, None if accepted or a part of the message)
HOSTILE = [
    (b"", b"null", "JSON"), (b"{", b"null", "JSON"), (b"null", b"null", "JSON"),
    (b"[1]", b"null", "object"), (b"[" * 5000, b"null", "JSON"), (b"\0\xff", b"null", "JSON"),
    (b'{"id":10,"dialect":"sqlite","sql":"SELE', b"10", "JSON"),
    (b'{"sql":"select 1","id":"a\\"}","x":', b'"a\\"}"', "JSON"),
    (b'{"id":18 "dialect":"sqlite"}', b"18", "JSON"),
    (raw(b"1") + b" x", b"1", "JSON"),
    (raw(b"1", b'"x":' + b"[" * 5000 + b"]" * 5000), b"1", "JSON"),
    (raw(b"[" * 5000 + b"]" * 5000), b"null", "JSON"),
    (raw(b"tru"), b"null", "JSON"),
    (raw(b'"x"', b'"dialect":"sqlite","sql":"select \xff"'), b'"x"', "JSON"),
    # Every kind of id comes back as it was.
    (raw(b"12345678901234567890123"), b"12345678901234567890123", None),
    (raw(b"1.50"), b"1.50", None), (raw(b"null"), b"null", None), (raw(b"false"), b"false", None),
    (raw(b'[1,{"a":"}]"}]'), b'[1,{"a":"}]"}]', None),
    (raw('"ä\\u00e4\\ud800"'.encode()), '"ä\\u00e4\\ud800"'.encode(), None),
    (raw(b"[1,\r2]"), b"[1,2]", None),
    (b'\xef\xbb\xbf{"id":2,' + line()[1:] + b"\r", b"2", None),
    (b'{"id":1,"x":{"id":3},' + line(id=2)[1:], b"2", None),
    (line(), b"null", None),
    # Members that are missing or not what they should be.
    (b'{"id":1}', b"1", "dialect"), (line(id=1, dialect=None), b"1", "dialect"),
    (line(id=1, dialect=5), b"1", "dialect"), (line(id=1, dialect="SQLite"), b"1", "mariadb"),
    (line(id=1, dialect="\ud800"), b"1", "dialect"), (line(id=1, sql=None), b"1", "sql"),
    (line(id=1, sql=["select 1"]), b"1", "sql"), (line(id=1, schema=3), b"1", "schema"),
    (line(id=1, details="yes"), b"1", "details"), (line(id=1, schema=None), b"1", None),
    (line(id=1, db=None, source=[]), b"1", None),
    # Texts that are no statement.
    (line(id=1, sql="select '\ud800'"), b"1", "surrogate"), (line(id=1, sql=""), b"1", "statement"),
    (line(id=1, sql="select '\0'"), b"1", "column 9"), (line(id=1, sql="\0"), b"1", "column 1"),
    (line(id=1, sql="select 1; select 2"), b"1", ""), (line(id=1, sql="select (" * 9999), b"1", ""),
    (line(id=1, sql="select 1 union select 2"), b"1", "UNION"),
]


class Roundtrip(ProgramTest):
    def answers(self, lines, *options, ending=b"\n"):
        run = self.run_program("roundtrip", *options, given=b"\n".join(lines) + ending)
        self.expect(run, OK)
        self.assertTrue(run.output.endswith(b"\n"))
        return run.output.split(b"\n")[:-1]

    def test_every_hostile_line_has_its_answer(self):
        answers = self.answers([given for given, _, _ in HOSTILE], ending=b"")
        self.assertEqual(len(answers), len(HOSTILE))
        for (given, identity, reason), answer in zip(HOSTILE, answers):
            with self.subTest(given=given[:80], answer=answer[:200]):
                self.assertTrue(answer.startswith(b'{"id":' + identity + b',"status":'))
                read = json.loads(answer)
                if reason is None:
                    self.assertEqual((read["status"], read["sql"]), ("ok", "SELECT\n\t1"))
                else:
                    self.assertEqual((read["status"], list(read)), ("rejected", ["id", "status", "message"]))
                    self.assertIn(reason, read["message"])
                    self.assertTrue(read["message"].strip())

    def test_each_dialect_and_schema_are_heeded(self):
        for dialect, schema, sql, wanted in [
            ("mysql", "m", "select `order` from m.t", "SELECT\n\t`order`\nFROM\n\tt"),
            ("mariadb", "m", "select a from n.t", "SELECT\n\ta\nFROM\n\tn.t"),
            ("postgresql", "public", 'select "A" from public.t', 'SELECT\n\t"A"\nFROM\n\tt'),
            ("oracle", "S", "select a from t x", "SELECT\n\tA\nFROM\n\tT X"),
            ("sqlite", "", "select a from main.t", "SELECT\n\ta\nFROM\n\tmain.t"),
            ("sqlserver", None, "select [select] from t", "SELECT\n\t[select]\nFROM\n\tdbo.t"),
        ]:
            with self.subTest(dialect=dialect):
                answer, = self.answers([line(id=1, dialect=dialect, schema=schema, sql=sql)])
                self.assertEqual(json.loads(answer).get("sql"), wanted, answer)

    def test_options_stand_in_for_members(self):
        given = b'{"id":1,"sql":"select a from public.t"}'
        answer, = self.answers([given], "-d", "postgresql", "-s", "public")
        self.assertEqual(json.loads(answer)["sql"], "SELECT\n\ta\nFROM\n\tt")
        own, = self.answers([line(sql="select 'a\"b'", dialect="mysql")], "-d", "postgresql")
        self.assertEqual(json.loads(own)["sql"], "SELECT\n\t'a\"b'")

    def test_details_tell_verdict_place_and_shape(self):
        cases = [
            ("select 1", ("accepted", None, None, (True, True))),
            ("select a from f(1), t", ("accepted", None, None, (False, True))),
            ("select a from (select 1 as a) s where (a = 1 or b like 'x' escape '!')",
             ("accepted", None, None, (True, False))),
            ("select a from t where a = f(1) and (b in (1, 2))", ("accepted", None, None, (True, True))),
            ("select 'ä',\n  from t", ("syntax_error", 2, 3, None)),
            ("select 1 union select 2", ("unsupported", 1, 10, None)),
            ("select 1; select 2", ("several_statements", 1, 11, None)),
            ("drop table t", ("not_select", 1, 1, None)),
            (3, ("invalid_line", None, None, None)),
        ]
        answers = self.answers([line(sql=sql, details=True) for sql, _ in cases])
        asked_once = self.answers([line(sql=sql) for sql, _ in cases], "--details")
        self.assertEqual(answers, asked_once)
        for (sql, (verdict, row, column, shape)), answer in zip(cases, map(json.loads, answers)):
            with self.subTest(sql=sql):
                components = shape and {"from": shape[0], "where": shape[1]}
                found = [answer[key] for key in ("verdict", "line", "column", "components")]
                self.assertEqual(found, [verdict, row, column, components])

    def test_an_answer_is_there_before_the_next_line_is_asked(self):
        with subprocess.Popen([PROGRAM, "roundtrip"], stdin=subprocess.PIPE,
                              stdout=subprocess.PIPE) as process:
            for number in range(3):
                process.stdin.write(line(id=number) + b"\n")
                process.stdin.flush()
                self.assertEqual(json.loads(process.stdout.readline())["id"], number)
            process.stdin.close()
            self.assertEqual(process.stdout.read(), b"")
        self.assertEqual(process.returncode, OK)

    def test_a_large_line_is_answered(self):
        text = "ä\\" * (4 << 20)
        given = [line(id=1, sql=f"select '{text}'"), b"x" * (16 << 20), line(id=3)]
        first, second, third = map(json.loads, self.answers(given))
        self.assertEqual(first["sql"], f"SELECT\n\t'{text}'")
        self.assertEqual((second["status"], third["status"]), ("rejected", "ok"))

    def test_a_line_for_which_memory_is_short_is_answered(self):
        limit = lambda: resource.setrlimit(resource.RLIMIT_AS, (200 << 20, resource.RLIM_INFINITY))
        if self.run_program("--version", preexec_fn=limit).code != OK:
            self.skipTest("the program does not start in so little memory: a sanitizer")
        given = [line(id=1, sql="select " + "1," * (15 << 20) + "1"), line(id=2),
                 b'{"id":3,"sql":"' + b"x" * (130 << 20), line(id=4)]
        run = self.run_program("roundtrip", "--details", given=b"\n".join(given), preexec_fn=limit)
        self.expect(run, OK)
        answers = list(map(json.loads, run.output.splitlines()))
        self.assertEqual([(answer["id"], answer["verdict"]) for answer in answers],
                         [(1, "internal_error"), (2, "accepted"), (3, "internal_error"), (4, "accepted")])
        for short in answers[::2]:
            self.assertIn("memory", short["message"])


if __name__ == "__main__":
    unittest.main()
