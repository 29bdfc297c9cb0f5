#include <QAction>
#include <QImage>
#include <QMenu>
#include <QTemporaryDir>
#include <QTest>

#include "apps/joinery-desk/canvas_demo_window.h"
#include "apps/joinery-desk/diagram_actions.h"
#include "apps/joinery-desk/diagram_picture.h"
#include "canvas/playground/canvas_playground.h"
#include "canvas/view/canvas_commands.h"

using namespace QB::Desk;

class CanvasDemoTest : public QObject {
    Q_OBJECT

    static QByteArray contentOf(const QString& file) {
        QFile opened(file);
        return opened.open(QIODevice::ReadOnly) ? opened.readAll() : QByteArray();
    }

private Q_SLOTS:
    void theViewMenuArrangesAndPutsBack() {
        CanvasDemoWindow window(6, 8);
        window.show();
        auto* const commands = window.playground()->commands();
        auto* const actions = window.findChild<DiagramActions*>();
        QVERIFY(actions->zoomIn->isEnabled());
        auto* const undo = window.findChild<QAction*>("undoArrange");
        QVERIFY(!undo->isEnabled());
        const QString before = commands->dump();
        actions->arrange->trigger();
        QVERIFY(undo->isEnabled());
        QVERIFY(commands->dump() != before);
        undo->trigger();
        QVERIFY(!undo->isEnabled());
        actions->zoomIn->trigger();
        QCOMPARE(commands->zoom(), 1.1);
        actions->overview->trigger();
        QVERIFY(!commands->isOverviewVisible());

        QMenu menu;
        DiagramActions withoutDiagram(&menu);
        QVERIFY(!withoutDiagram.arrange->isEnabled());
    }

    void picturesShowRowsAsTheScreenDoes() {
        QTemporaryDir folder;
        CanvasDemoWindow window(6, 4);
        window.show();
        const auto& commands = *window.playground()->commands();
        for (const char* name : {"a.png", "a.svg", "a.pdf"})
            QCOMPARE(saveDiagramPicture(commands, folder.filePath(name)), QString());
        const QImage image(folder.filePath("a.png"));
        QCOMPARE(image.width(), int(commands.pictureRect().width() * 2));
        QVERIFY(contentOf(folder.filePath("a.pdf")).startsWith("%PDF"));
        // "price" is the last row that shows, and SVG cannot cut what lies below.
        const QByteArray drawing = contentOf(folder.filePath("a.svg"));
        QVERIFY(drawing.contains("price"));
        QVERIFY(!drawing.contains("parent_id"));
        QVERIFY(!saveDiagramPicture(commands, folder.filePath("no/such/a.svg")).isEmpty());
    }
};

QTEST_MAIN(CanvasDemoTest)
#include "canvas_demo_test.moc"
