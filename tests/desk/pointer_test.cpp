#include <unistd.h>
#include <QProcess>
#include <QStandardPaths>
#include <QTabWidget>

#include "apps/joinery-desk/sql_editor.h"
#include "apps/joinery-desk/sql_tab.h"
#include "desk/desk_fixture.h"

/// Rows dragged in the real window by the pointer of a real X server, which starts with the test.
class PointerTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aRowDraggedBelowTheOthersComesLast_data() {
        QTest::addColumn<int>("tab");
        QTest::addColumn<QString>("end");
        const auto row = [](const char* clause, int tab, const char* end) {
            QTest::newRow(clause) << tab << QString(end);
        };
        row("SELECT", 0, "SELECT b, a FROM t WHERE a = 1 AND b = 2 ORDER BY a ASC, b ASC");
        row("WHERE", 2, "SELECT a, b FROM t WHERE b = 2 AND a = 1 ORDER BY a ASC, b ASC");
        row("ORDER BY", 5, "SELECT a, b FROM t WHERE a = 1 AND b = 2 ORDER BY b ASC, a ASC");
    }
    void aRowDraggedBelowTheOthersComesLast() {
        QFETCH(int, tab);
        QFETCH(QString, end);
        QB::Test::DeskFixture desk;
        QVERIFY(desk.start("CREATE TABLE t (a, b);"));
        auto* const sql = desk.window->sqlTab();
        sql->editor()->insertPlainText(
            "SELECT a, b FROM t WHERE a = 1 AND b = 2 ORDER BY a ASC, b ASC");
        sql->apply({});
        auto* const tabs = desk.window->builder()->findChild<QTabWidget*>("tabWidget");
        tabs->setCurrentIndex(tab);
        auto* const rows = tabs->currentWidget()->findChild<QTableView*>();
        QTRY_COMPARE(rows->model()->rowCount(), 2);
        QVERIFY(QTest::qWaitForWindowExposed(desk.window.get()));

        const auto place = [rows](int row, int y) {
            const QPoint point = rows->visualRect(rows->model()->index(row, 0)).topLeft();
            const QPoint screen = rows->viewport()->mapToGlobal(point + QPoint(12, y));
            return QString("mousemove %1 %2 sleep 0.05 ").arg(screen.x()).arg(screen.y());
        };
        const QString steps = place(0, 12) + "mousedown 1 " + place(0, 20) + place(1, 4) +
                              place(1, 15) + place(1, 34) + place(1, 36) + "mouseup 1";
        QProcess hand;
        hand.start("xdotool", steps.split(' '));
        QTRY_COMPARE(desk.preview(), end);
        QTRY_COMPARE(hand.state(), QProcess::NotRunning);
    }
};

// Asked by the sanitizers only. libxkbcommon-x11 (1.5) copies a name out of the server's reply by
// `strndup` with its length, where the byte after it counts as read; Qt's plugin for X and the bus
// that it opens keep memory to the end. The grand tour looks for our own leaks in drags.
extern "C" const char* __asan_default_suppressions();
extern "C" const char* __asan_default_suppressions() {
    return "interceptor_via_lib:libxkbcommon-x11";
}
extern "C" int __lsan_is_turned_off();
extern "C" int __lsan_is_turned_off() {
    return 1;
}

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("JOINERY_X_SERVER")) {
        for (const char* tool : {"xvfb-run", "xauth", "xdotool"})
            if (QStandardPaths::findExecutable(tool).isEmpty())
                return printf("skipped: no %s\n", tool), 0;
        qputenv("JOINERY_X_SERVER", "1");
        qputenv("QT_QPA_PLATFORM", "xcb");
        execlp("xvfb-run", "xvfb-run", "-a", "-s", "-screen 0 1280x1000x24", argv[0], nullptr);
        return 1;
    }
    const QApplication application(argc, argv);
    PointerTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "pointer_test.moc"
