#include <QDrag>
#include <QHBoxLayout>
#include <QTreeWidget>
#include <QWindow>
#include <QtTest>

#include "canvas/base/context.h"
#include "canvas/diagram/diagram.h"
#include "canvas/drawer/diagram_drawer_linux.h"
#include "canvas/items/base_item_body.h"
#include "canvas/items/item.h"
#include "canvas/view/lumo_ui_view.h"
#include "diagrampanel/diagram_object_tree_panel_widget.h"
#include "diagrampanel/diagram_panel_widget.h"
#include "diagrampanel/fake_server.h"

namespace QB {

/// The whole road of a drag with the mouse. It runs on the platform "minimal": "offscreen" lets no
/// drag begin.
class DragTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aTableDraggedFromTheTreeIsAddedWhereItIsLetGo() {
        Test::ServedEngine desk;
        desk.refreshAndWait({});
        QWidget window;
        auto* layout = new QHBoxLayout(&window);
        auto* objects = new QBDiagramObjectTreePanelWidget;
        auto* panel = new QBDiagramPanelWidget;
        layout->addWidget(objects);
        layout->addWidget(panel, 1);
        window.resize(700, 600);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        panel->setEngine(desk.engine.get());
        objects->setEngine(desk.engine.get());
        auto* tree = objects->findChild<QTreeWidget*>("diagramPaneObjectTreeWidget");
        QTRY_COMPARE(tree->topLevelItemCount(), 2);
        tree->topLevelItem(0)->setExpanded(true);
        QTRY_COMPARE(tree->topLevelItem(0)->childCount(), 3);
        QWindow* handle = window.windowHandle();
        const QPoint from = tree->viewport()->mapTo(
            &window, tree->visualItemRect(tree->topLevelItem(0)->child(0)).center());
        const QPoint to = panel->mapTo(&window, QPoint(150, 120));
        // The drag runs an event loop of its own, in which its end must arrive.
        QTimer whileDragging;
        connect(&whileDragging, &QTimer::timeout, handle, [&] {
            if (!tree->findChild<QDrag*>()) return;
            whileDragging.stop();
            QTest::mouseMove(handle, to - QPoint(20, 20));
            QTest::mouseMove(handle, to);
            QTest::mouseRelease(handle, Qt::LeftButton, {}, to);
        });
        whileDragging.start(1);
        QTest::mousePress(handle, Qt::LeftButton, {}, from);
        QTest::mouseMove(handle, from + QPoint(15, 2));
        QTest::mouseMove(handle, from + QPoint(30, 5));
        QTRY_COMPARE(desk.sources(), QStringList("main.city"));
        const auto* diagram = panel->drawer()->diagram();
        QTRY_COMPARE(diagram->items().size(), std::size_t(1));
        auto* const body = diagram->items().front()->getBody();
        const auto middleOfTitle = [&] {
            const LumoRect title = panel->drawer()->getContext()->translateRectToControlSpace(
                body->titleRect(), body, panel->drawer()->getControl());
            const QPoint middle(title.origin.x + title.size.width / 2,
                                title.origin.y + title.size.height / 2);
            return panel->drawer()->getView()->viewport()->mapTo(&window, middle);
        };
        QTRY_COMPARE(middleOfTitle(), to);  // once it is laid out
    }
};

}  // namespace QB

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "minimal");
    QApplication application(argc, argv);
    QB::DragTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "drag_test.moc"
