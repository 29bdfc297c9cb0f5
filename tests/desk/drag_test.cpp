#include <QApplication>
#include <QDrag>
#include <QTimer>
#include <QWindow>

#include "desk/desk_fixture.h"

/// A drag with the mouse from the tree to the diagram of the real window. It runs on the platform
/// "minimal", since "offscreen" lets no drag begin.
class DragTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aTableDraggedOntoTheDiagramJoinsTheQuery() {
        QB::Test::DeskFixture desk;
        QVERIFY(desk.start("CREATE TABLE city (id); CREATE TABLE country (code);", "city"));

        auto* diagram = desk.window->builder()->findChild<QWidget*>("diagramPanel");
        QWindow* handle = desk.window->windowHandle();
        const QPoint from =
            desk.tree()->viewport()->mapTo(desk.window.get(), desk.centre(desk.row("country")));
        const QPoint to = diagram->mapTo(desk.window.get(), diagram->rect().center());
        // The drag has an event loop of its own, in which its end must arrive.
        QTimer hand;
        connect(&hand, &QTimer::timeout, handle, [&] {
            if (!desk.tree()->findChild<QDrag*>()) return;
            hand.stop();
            QTest::mouseMove(handle, to - QPoint(20, 20));
            QTest::mouseMove(handle, to);
            QTest::mouseRelease(handle, Qt::LeftButton, {}, to);
        });
        hand.start(1);
        QTest::mousePress(handle, Qt::LeftButton, {}, from);
        QTest::mouseMove(handle, from + QPoint(15, 2));
        QTest::mouseMove(handle, from + QPoint(30, 5));
        QTRY_COMPARE(desk.preview(), QString("SELECT * FROM city, country"));
    }
};

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "minimal");
    const QApplication application(argc, argv);
    DragTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "drag_test.moc"
