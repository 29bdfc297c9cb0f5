"""Holds the tree against the rules of docs/architecture.md, and each rule against seeded faults."""
import os
import subprocess
import tempfile
import unittest
from pathlib import Path

import house

ROOT = Path(__file__).resolve().parents[2]
QT_HEADERS = os.environ.get("JOINERY_QT_HEADERS")


def tracked_files():
    """The files that git knows or would take; outside a clone, every file but those of builds."""
    git = subprocess.run(["git", "ls-files", "-co", "--exclude-standard"], cwd=ROOT,
                         capture_output=True, text=True)
    if git.returncode == 0: return git.stdout.splitlines()
    return [p.relative_to(ROOT).as_posix() for p in ROOT.rglob("*")
            if p.is_file() and not p.relative_to(ROOT).parts[0].startswith((".git", "build"))]


class TheTree(unittest.TestCase):
    def expect_none(self, faults):
        if faults: self.fail(f"{len(faults)} faults:\n" + "\n".join(faults))

    def test_table_folders_and_targets_agree(self):
        self.expect_none(house.check_table(ROOT))

    def test_includes_go_down(self):
        self.assertGreater(len(list(house.source_files(ROOT, "src"))), 20)
        self.expect_none(house.check_includes(ROOT))

    @unittest.skipUnless(QT_HEADERS, "JOINERY_QT_HEADERS is not set")
    def test_rooms_include_only_their_qt_modules(self):
        self.expect_none(house.check_qt(ROOT, QT_HEADERS))

    def test_public_headers_are_closed_and_complete(self):
        self.expect_none(house.check_public_headers(ROOT))

    def test_no_file_speaks_of_documents_that_readers_do_not_have(self):
        self.expect_none(house.check_words(ROOT, tracked_files()))

    def test_links_between_documents_lead_somewhere(self):
        self.expect_none(house.check_links(ROOT, tracked_files()))


TABLE = """
| Floor | Room | Qt | What |
| 1 | `src/low/` | Core | ground |
| 1 | `src/beside/` | none | ground |
| 2 | `src/high/` | Widgets | above |
| 3 | `src/later/` | Core | To come: more |
| 4 | `apps/tool/` | Widgets Sql | a program |
| 4 | `apps/small/` | Core Sql | a program made from rooms |
"""

SOUND = {
    "docs/architecture.md": TABLE,
    "cmake/public_headers.txt": "# for hosts\nlow/low.h\n",
    "src/low/CMakeLists.txt": "joinery_room(low CORE)",
    "src/beside/CMakeLists.txt": "joinery_room(beside STDONLY)",
    "src/high/CMakeLists.txt": "joinery_room(high USES low)",
    "src/low/low.h": "#include <QString>\nclass QB_EXPORT Low;\n",
    "src/low/low.cpp": '#include "low/low.h"\n',
    "src/beside/beside.h": "#include <string>\n",
    "src/high/high.cpp": '#include "low/low.h"\n#include <QWidget>\n',
    "apps/small/main.cpp": '#include "beside/beside.h"\n#include <QString>\n#include <QSqlDatabase>\n',
    "apps/tool/main.cpp": '#include "low/low.h"\n#include <QtSql/QSqlDatabase>\n',
}


class SeededFaults(unittest.TestCase):
    """Each rule reports the fault that it is there for, and nothing on a sound tree."""

    def faults(self, check, changes, *more):
        with tempfile.TemporaryDirectory() as folder:
            root = Path(folder)
            for name, text in {**SOUND, **changes}.items():
                (root / name).parent.mkdir(parents=True, exist_ok=True)
                (root / name).write_text(text)
            for module, header in (("QtCore", "QString"), ("QtGui", "QColor"),
                                   ("QtWidgets", "QWidget"), ("QtSql", "QSqlDatabase")):
                (root / "qt" / module).mkdir(parents=True, exist_ok=True)
                (root / "qt" / module / header).write_text("")
            if check is house.check_qt: more = (root / "qt",)
            return check(root, *more)

    def expect(self, check, changes, wanted, *more):
        found = self.faults(check, changes, *more)
        self.assertEqual(len(found), 1, found)
        self.assertIn(wanted, found[0])

    def test_a_sound_tree_has_no_faults(self):
        for check in (house.check_table, house.check_includes, house.check_qt,
                      house.check_public_headers):
            self.assertEqual(self.faults(check, {}), [], check.__name__)

    def test_table(self):
        self.expect(house.check_table, {"src/new/CMakeLists.txt": "joinery_room(new)"}, "src/new")
        self.expect(house.check_table, {"src/later/x.h": ""}, "to come")
        self.expect(house.check_table, {"src/low/CMakeLists.txt": "joinery_room(low)"}, "CORE")

    def test_direction_of_includes(self):
        check = house.check_includes
        self.expect(check, {"src/low/up.cpp": '#include "high/high.h"', "src/high/high.h": ""},
                    "upwards")
        self.expect(check, {"src/low/side.cpp": '#include "beside/beside.h"'}, "neighbour")
        self.expect(check, {"src/high/more.cpp": ' # include "beside/beside.h"'}, "does not use")
        self.expect(check, {"src/high/rel.cpp": '#include "../low/low.h"'}, "not written from")
        self.expect(check, {"src/low/near.cpp": '#include "low.h"'}, "not written from")
        self.expect(check, {"src/model/export.h": "#include <string>",
                            "docs/architecture.md": TABLE + "| 1 | `src/model/` | Core | m |"},
                    "includes nothing")
        self.expect(check, {"apps/tool/a.cpp": '#include "beside/beside.h"'}, "hosts do not see")
        self.expect(check, {"hostkit/a.cpp": '#include "beside/beside.h"',
                            "docs/architecture.md": TABLE + "| 2 | `hostkit/` | Core | kit |"},
                    "hosts do not see")
        self.expect(check, {"src/stray.cpp": ""}, "no room")

    def test_qt_modules(self):
        check = house.check_qt
        self.expect(check, {"src/low/a.cpp": "#include <QColor>"}, "QtGui")
        self.expect(check, {"src/low/a.cpp": "#include <QtWidgets/QLabel>"}, "QtWidgets")
        self.expect(check, {"apps/small/a.cpp": "#include <QWidget>"}, "QtWidgets")
        self.expect(check, {"src/high/a.cpp": "#include <QSqlDatabase>"}, "QtSql")
        self.expect(check, {"src/beside/a.cpp": "#include <QString>"}, "QtCore")

    def test_public_headers(self):
        check = house.check_public_headers
        self.expect(check, {"cmake/public_headers.txt": "low/low.h\nlow/gone.h"}, "no such file")
        self.expect(check, {"src/low/low.h": '#include "beside/beside.h"'}, "which is not")
        self.expect(check, {"src/beside/beside.h": "class QB_EXPORT A;"}, "exports something")

    def test_links(self):
        self.expect(house.check_links, {"docs/a.md": "[b](b.md#x) [l](architecture.md)"},
                    "links to b.md", ["docs/a.md"])

    def test_words(self):
        for line in ("as the " + "specif" + "ication says", "see sp" + "ec.md", "// Pa" + "rt 4.2"):
            self.expect(house.check_words, {"src/low/a.cpp": line}, "a.cpp:1", ["src/low/a.cpp"])
        self.assertEqual(self.faults(house.check_words, {"a.md": "Specify part 2 of 4: SPECIFIC"
                                                               "ATION."}, ["a.md"]),
                         [])


if __name__ == "__main__":
    unittest.main()
