#include <gtest/gtest.h>

#include <cmath>

#include <QHelpEvent>
#include <QImage>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QToolTip>
#include <QVBoxLayout>

#include "canvas/base/canvas_style.h"
#include "canvas/diagram/focus_place.h"
#include "canvas/view/canvas_commands.h"
#include "canvas/view/overview_map.h"
#include "model/callbacks.h"
#include "tests/canvas/view_scene.h"

namespace QB::DiagramLumo {
namespace {

struct CommandScene : ViewScene {
    CommandScene() : commands(new QBCanvasCommands(view.get())) { settle(); }
    OverviewMap* map() const { return view->findChild<OverviewMap*>(); }
    QColor pixel(LumoPoint inDiagram) const {
        const LumoControlPoint at = view->getControl()->diagramSpaceToControlSpace(inDiagram);
        return view->viewport()->grab().toImage().pixelColor(at.x, at.y);
    }
    QString tipAt(LumoPoint inDiagram) const {
        const LumoControlPoint at = view->getControl()->diagramSpaceToControlSpace(inDiagram);
        const QPoint point(at.x, at.y);
        // A tip goes a while after it was told to.
        QToolTip::hideText();
        if (!QTest::qWaitFor([] { return !QToolTip::isVisible(); })) return "the old tip stays";
        QHelpEvent event(QEvent::ToolTip, point, view->viewport()->mapToGlobal(point));
        QCoreApplication::sendEvent(view->viewport(), &event);
        return QToolTip::text();
    }
    LumoPoint startOfLink() const {
        return link->translatePoint(link->routes().front().start, nullptr);
    }
    QBCanvasCommands* commands;
};

bool differs(const QColor& a, const QColor& b) {
    return std::abs(a.red() - b.red()) + std::abs(a.green() - b.green()) +
               std::abs(a.blue() - b.blue()) >
           72;
}

TEST(CanvasView, the_overview_shows_moves_hides_and_rests) {
    CommandScene scene;
    ASSERT_TRUE(scene.map());
    EXPECT_TRUE(scene.map()->isHidden());  // all shows
    scene.table("far", {2500, 1300}, {"id"});
    scene.settle();
    EXPECT_TRUE(scene.map()->isVisible());
    const QRect room = scene.view->viewport()->rect();
    EXPECT_TRUE(room.contains(scene.map()->geometry()));

    // A click brings what lies there to the middle.
    const QPoint target = scene.map()->diagramToMap().map(QPoint(2600, 1350));
    QTest::mouseClick(scene.view->windowHandle(), Qt::LeftButton, {},
                      scene.map()->mapTo(scene.view.get(), target));
    scene.settle();
    EXPECT_TRUE(lumoPointInRect({2600, 1350}, scene.view->getControl()->getDisplayRect()));
    EXPECT_TRUE(scene.diagram->selectedItems().empty());
    // It stays in a corner, also in another size of the view: in one where it covers no item.
    EXPECT_EQ(room.right() - scene.map()->geometry().right(), 8);
    scene.view->resize(700, 500);
    scene.settle();
    EXPECT_EQ(scene.view->viewport()->rect().right() - scene.map()->geometry().right(), 8);
    EXPECT_EQ(scene.map()->geometry().top(), 8) << "an item stands in the corner below";

    scene.settle();
    const int passes = scene.view->paintPasses();
    for (int i = 0; i < 20; ++i)
        scene.settle();
    EXPECT_EQ(scene.view->paintPasses(), passes);

    scene.commands->setOverviewVisible(false);
    EXPECT_TRUE(scene.map()->isHidden());
    scene.view->getControl()->setScrollOrigin({0, 0});
    scene.settle();
    EXPECT_TRUE(scene.map()->isHidden());
    scene.commands->setOverviewVisible(true);
    EXPECT_TRUE(scene.map()->isVisible());
    scene.diagram.reset();
    EXPECT_TRUE(scene.map()->isHidden());
}

TEST(CanvasView, arrange_is_taken_back_but_not_over_what_moved_since) {
    CommandScene scene;
    std::vector<LumoRect> before;
    for (const QBLumoItem* item : scene.diagram->items())
        before.push_back(item->getRect());
    const LumoPoint start = scene.startOfLink();
    bool canUndo = false;
    QObject::connect(scene.commands, &QBCanvasCommands::undoArrangeAvailable,
                     [&](bool available) { canUndo = available; });
    scene.view->getControl()->setScrollOrigin({2000, 900});
    scene.commands->arrange();
    EXPECT_TRUE(canUndo);
    scene.settle();
    EXPECT_NE(scene.startOfLink(), start);
    EXPECT_TRUE(lumoIntersectsRect(scene.film->item()->getRect(),
                                   scene.view->getControl()->getDisplayRect()));
    const LumoRect moved = lumoMovedRect(scene.recent->item()->getRect(), {50, 50});
    scene.recent->item()->setRect(moved);
    scene.view->getControl()->setScrollOrigin({2000, 900});
    scene.commands->undoArrange();
    EXPECT_TRUE(lumoIntersectsRect(before[0], scene.view->getControl()->getDisplayRect()));
    EXPECT_FALSE(canUndo);
    EXPECT_EQ(scene.film->item()->getRect(), before[0]);
    EXPECT_EQ(scene.language->item()->getRect(), before[1]);
    EXPECT_EQ(scene.recent->item()->getRect(), moved);
    // The link has come along.
    scene.settle();
    EXPECT_EQ(scene.startOfLink(), start);
}

TEST(CanvasView, pictures_are_written_and_read_and_failures_are_told) {
    CommandScene scene;
    const QTemporaryDir folder;
    const QString png = folder.filePath("diagram.png");
    ASSERT_EQ(scene.commands->exportPng(png, 2), QString());
    const QImage image(png);
    EXPECT_EQ(image.size(), (scene.commands->pictureRect().size() * 2).toSize());
    const LumoPoint ground{450, 100};
    const QPointF at = (QPointF(ground.x, ground.y) - scene.commands->pictureRect().topLeft()) * 2;
    const LumoColor canvas = themePalette().canvas;
    EXPECT_EQ(image.pixelColor(at.toPoint()), QColor(canvas.red, canvas.green, canvas.blue));

    const QString pdf = folder.filePath("diagram.pdf");
    ASSERT_EQ(scene.commands->exportPdf(pdf), QString());
    QFile file(pdf);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray content = file.readAll();
    EXPECT_TRUE(content.startsWith("%PDF-"));
    EXPECT_EQ(content.count("/Type /Page\n"), 1);
    EXPECT_TRUE(content.contains("%%EOF"));

    const QString nowhere = folder.filePath("no/such/folder/a");
    EXPECT_TRUE(scene.commands->exportPng(nowhere, 1).contains(nowhere));
    EXPECT_TRUE(scene.commands->exportPdf(nowhere).contains(nowhere));
    for (const double scale : {0.0, -1.0, 1e6, std::nan("")})
        EXPECT_FALSE(scene.commands->exportPng(png, scale).isEmpty());
    EXPECT_EQ(QImage(png).size(), image.size());  // what stood there stays
    scene.diagram->clearChildren();
    EXPECT_FALSE(scene.commands->exportPng(png, 1).isEmpty());
    EXPECT_FALSE(scene.commands->exportPdf(pdf).isEmpty());
}

TEST(CanvasView, tips_tell_what_is_cut_and_nothing_else) {
    CommandScene scene;
    const std::string longName(80, 'w');
    scene.film->setFields({"id", longName});
    scene.film->setAlias(longName);
    std::string lines;
    for (int i = 0; i < 100; ++i)
        lines += "line " + std::to_string(i) + "\n";
    scene.recent->setText(lines);
    scene.settle();
    const auto inFilm = [&](LumoPoint point) {
        return scene.film->translatePoint(point, nullptr);
    };
    EXPECT_EQ(scene.tipAt(inFilm({60, 15})).toStdString(), "film (" + longName + ")");
    EXPECT_EQ(scene.tipAt(inFilm({60, 31 + 2 * 20 + 10})).toStdString(), longName);
    EXPECT_EQ(scene.tipAt(inFilm({60, 31 + 20 + 10})), QString());
    const QString text = scene.tipAt(scene.recent->translatePoint({40, 60}, nullptr));
    EXPECT_TRUE(text.startsWith("line 0\n"));
    EXPECT_EQ(text.count('\n'), 30);
    EXPECT_EQ(scene.tipAt({450, 100}), QString());
}

TEST(CanvasView, the_keyboard_comes_in_leads_through_and_goes_out) {
    CommandScene scene;
    QWidget window;
    auto* const layout = new QVBoxLayout(&window);
    QLineEdit before, after;
    layout->addWidget(&before);
    layout->addWidget(scene.view.get());
    layout->addWidget(&after);
    window.resize(900, 700);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    window.activateWindow();
    before.setFocus();
    const auto press = [&](Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(window.windowHandle(), key, modifiers);
        ViewScene::settle();
    };
    EXPECT_FALSE(scene.diagram->focusedObject());
    press(Qt::Key_Tab);
    EXPECT_TRUE(scene.view->hasFocus());
    EXPECT_EQ(scene.diagram->focusedObject(), scene.film->item());
    // The ring stands around it, and goes with the focus.
    const LumoRect film = focusPlace(scene.diagram.get());
    const LumoPoint ring{film.origin.x - 1, film.origin.y + 40};
    const QColor lit = scene.pixel(ring);
    // The mouse takes it away and leaves the focus.
    QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {},
                      scene.view->viewport()->mapTo(&window, QPoint(film.origin.x + 100, 75)));
    ViewScene::settle();
    EXPECT_EQ(scene.diagram->focusedObject(), scene.film->item());
    EXPECT_TRUE(differs(scene.pixel(ring), lit));
    for (int i = 0; i < 3; ++i)
        press(Qt::Key_Tab);
    EXPECT_EQ(scene.diagram->focusedObject(), scene.link);
    EXPECT_TRUE(differs(scene.pixel(ring), lit));
    press(Qt::Key_Tab);
    EXPECT_TRUE(after.hasFocus());
    press(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(scene.diagram->focusedObject(), scene.link);
    press(Qt::Key_Return);
    EXPECT_EQ(scene.opened.size(), 1u);
    for (int i = 0; i < 3; ++i)
        press(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(scene.diagram->focusedObject(), scene.film->item());
    press(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_TRUE(before.hasFocus());

    // Rows, ticks, links, sizes and edit without a mouse.
    press(Qt::Key_Tab);
    press(Qt::Key_F);
    press(Qt::Key_End);
    press(Qt::Key_Space);
    EXPECT_TRUE(scene.film->isFieldSelected("language_id"));
    std::string drawn;
    scene.context.setFieldLinkDrawn([&](QBLumoItem*, const std::string& from, QBLumoItem*,
                                        const std::string& to) { drawn = from + "=" + to; });
    press(Qt::Key_L);
    press(Qt::Key_Tab);
    press(Qt::Key_Return);
    EXPECT_EQ(drawn, "language_id=id");
    press(Qt::Key_Escape);
    press(Qt::Key_R);
    const LumoRect size = scene.language->item()->getRect();
    press(Qt::Key_Right);
    EXPECT_EQ(scene.language->item()->getRect().size.width, size.size.width + 10);
    press(Qt::Key_Escape);
    EXPECT_EQ(scene.language->item()->getRect(), size);
    press(Qt::Key_Tab);
    press(Qt::Key_E);
    EXPECT_EQ(scene.edits, 1);
    press(Qt::Key_Space);
    EXPECT_EQ(scene.diagram->selectedItems(), std::vector<QBLumoItem*>{scene.recent->item()});

    // What lies out of sight comes into it.
    QBLumoItem* const far = scene.table("far", {2500, 1300}, {"id"})->item();
    press(Qt::Key_Tab);
    EXPECT_EQ(scene.diagram->focusedObject(), far);
    EXPECT_TRUE(lumoContainsRect(scene.view->getControl()->getDisplayRect(),
                                 focusPlace(scene.diagram.get())));
    QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {},
                      scene.view->viewport()->mapTo(&window, QPoint(5, 5)));
    EXPECT_FALSE(scene.diagram->isFocusRingShown());
    layout->removeWidget(scene.view.get());
    scene.view->setParent(nullptr);
}

}  // namespace
}  // namespace QB::DiagramLumo
