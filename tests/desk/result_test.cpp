#include <QAbstractItemModelTester>
#include <QClipboard>
#include <QGuiApplication>
#include <QLocale>
#include <QTableView>
#include <QTest>

#include "apps/joinery-desk/cell_text.h"
#include "apps/joinery-desk/command_line.h"
#include "apps/joinery-desk/recent_files.h"
#include "apps/joinery-desk/result_grid.h"
#include "apps/joinery-desk/result_model.h"
#include "hostkit/threads.h"

#include <QSettings>
#include <QTemporaryDir>

using namespace QB::Desk;

class ResultTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() {
        QLocale::setDefault(QLocale::c());
        QB::HostKit::installCallbacks();
    }

    void aCellShowsItsValueOnOneLine_data() {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QString>("copied");
        const auto row = [](const char* name, const QVariant& value, const char* shown,
                            const char* copied) {
            QTest::newRow(name) << value << QString(shown) << QString(copied);
        };
        row("NULL", {}, "NULL", "");
        row("empty", "", "", "");
        row("lines", "a\r\nb\tc", "a↵b→c", "a\r\nb\tc");
        row("tenth", 0.1, "0.1", "0.1");
        row("sum", 0.1 + 0.2, "0.30000000000000004", "0.30000000000000004");
        row("large", Q_INT64_C(9223372036854775807), "9223372036854775807", "9223372036854775807");
        row("blob", QByteArray::fromHex("00ff10"), "3 bytes, binary: 00 ff 10", "0x00ff10");
        row("empty blob", QByteArray(""), "0 bytes, binary", "0x");
    }
    void aCellShowsItsValueOnOneLine() {
        QFETCH(QVariant, value);
        QFETCH(QString, shown);
        QFETCH(QString, copied);
        QCOMPARE(shortCellText(value), shown);
        QCOMPARE(fullCellText(value), copied);
    }

    void aHugeTextIsElidedAndToldInAToolTip() {
        ResultModel model;
        const QAbstractItemModelTester tester(&model);
        model.reset({"text"});
        const QString huge = QString("<b>x</b>").repeated(1000000);
        model.append({{huge}, {"short"}, {QByteArray(1 << 20, 'x')}});
        const auto tip = [&](int row) {
            return model.index(row, 0).data(Qt::ToolTipRole).toString();
        };
        QVERIFY(model.index(0, 0).data().toString().size() < 300);
        QVERIFY(model.index(0, 0).data().toString().endsWith("…"));
        QVERIFY(tip(0).contains("&lt;b&gt;") && tip(0).size() < 30000);
        QVERIFY(tip(1).isEmpty());
        QVERIFY(model.index(2, 0).data().toString().startsWith("1.00 MiB, binary: 78 78"));
        QCOMPARE(fullCellText(model.value(0, 0)), huge);
        model.append({{1}, {2}});
        model.reset({"a", "b"});
        QCOMPARE(model.rowCount(), 0);
    }

    void selectedCellsAreCopiedAsTabSeparatedText() {
        ResultGrid grid;
        grid.model()->reset({"id", "a\tb", "note"});
        grid.model()->append({{1, "say \"hi\"", QVariant()}, {2, "two\nlines", ""}, {3, "x", "y"}});
        grid.resize(600, 300);
        grid.show();
        QVERIFY(QTest::qWaitForWindowActive(&grid));
        auto* view = grid.findChild<QTableView*>();
        const auto clip = [] {
            return QGuiApplication::clipboard()->text();
        };
        view->setFocus();
        QTest::keyClick(view, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(view, Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(clip(), QString("1\t\"say \"\"hi\"\"\"\t\n2\t\"two\nlines\"\t\"\"\n3\tx\ty\n"));
        QTest::keyClick(view, Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
        QVERIFY2(clip().startsWith("id\t\"a\tb\"\tnote\n1\t"), qPrintable(clip()));
    }

    void aWrongCommandLineIsRefused_data() {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<bool>("isRight");
        const auto row = [](const char* text, bool isRight) {
            QTest::newRow(text) << QString(text).split(' ') << isRight;
        };
        row("desk a.db --add x --add s.y --run", true);
        row("desk --sample --theme dark --size 1200x800 --scale 2", true);
        row("desk --size=100x100", true);
        row("desk a.db b.db", false);
        row("desk --sample a.db", false);
        row("desk --theme pink", false);
        row("desk --size 12", false);
        row("desk --size 1200x800x2", false);
        row("desk --scale big", false);
        row("desk --screenshot", false);
        row("desk --bogus", false);
    }
    void aWrongCommandLineIsRefused() {
        QFETCH(QStringList, arguments);
        QFETCH(bool, isRight);
        const CommandLineResult result = parseCommandLine(arguments);
        QCOMPARE(result.isComplete(), isRight);
        if (isRight && arguments.contains("--run"))
            QCOMPARE(result.options.tables, QStringList({"x", "s.y"}));
    }
};

QTEST_MAIN(ResultTest)
#include "result_test.moc"
