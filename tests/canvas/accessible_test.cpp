#include <gtest/gtest.h>

#include <cmath>

#include <QAccessible>

#include "canvas/base/canvas_style.h"
#include "canvas/view/diagram_accessible.h"
#include "tests/canvas/view_scene.h"

namespace QB::DiagramLumo {
namespace {

QString nameOf(QAccessibleInterface* of) {
    return of->text(QAccessible::Name);
}

/// Depth first, as a screen reader searches.
QAccessibleInterface* named(QAccessibleInterface* root, const QString& name) {
    for (int i = 0; i < root->childCount(); ++i) {
        QAccessibleInterface* const child = root->child(i);
        if (nameOf(child) == name) return child;
        if (QAccessibleInterface* const found = named(child, name)) return found;
    }
    return nullptr;
}

QStringList childNames(QAccessibleInterface* of) {
    QStringList names;
    for (int i = 0; i < of->childCount(); ++i)
        names << nameOf(of->child(i));
    return names;
}

struct AccessibleScene : ViewScene {
    QAccessibleInterface* root() const { return QAccessible::queryAccessibleInterface(view.get()); }
    QAccessibleInterface* find(const char* name) const {
        return named(root(), QString::fromLatin1(name));
    }
    bool act(const char* name, const QString& action) const {
        QAccessibleInterface* const on = find(name);
        if (!on || !on->actionInterface()->actionNames().contains(action)) return false;
        on->actionInterface()->doAction(action);
        settle();
        return true;
    }
    /// Where the pixels of a rectangle of the diagram lie, computed by hand.
    QRect painted(const LumoRect& rect) const {
        const double zoom = view->getControl()->getZoom();
        const LumoControlPoint origin = view->getControl()->getScrollOrigin();
        const QPoint from(int(std::ceil(rect.origin.x * zoom)) - origin.x,
                          int(std::ceil(rect.origin.y * zoom)) - origin.y);
        return {view->viewport()->mapToGlobal(from),
                QSize(int(rect.size.width * zoom), int(rect.size.height * zoom))};
    }
};

bool isNear(const QRect& a, const QRect& b) {
    return std::abs(a.left() - b.left()) <= 1 && std::abs(a.top() - b.top()) <= 1 &&
           std::abs(a.right() - b.right()) <= 1 && std::abs(a.bottom() - b.bottom()) <= 1;
}

using Actions = QAccessibleActionInterface;

TEST(CanvasAccessible, the_tree_names_items_links_rows_and_the_edit_button) {
    AccessibleScene scene;
    EXPECT_EQ(nameOf(scene.root()), "Diagram");
    EXPECT_EQ(scene.root()->role(), QAccessible::LayeredPane);
    EXPECT_EQ(childNames(scene.root()).mid(0, 4).join("|"),
              "film|language (l)|recent|INNER JOIN: film and language (l)");
    // In the order in which they came, whichever lies above the others.
    scene.diagram->bringChildToFront(scene.film->item());
    EXPECT_EQ(nameOf(scene.root()->child(0)), "film");
    EXPECT_EQ(childNames(scene.find("film")).join("|"), "*|id|title|language_id");
    EXPECT_EQ(childNames(scene.find("recent")).join("|"), "Edit the text");
    EXPECT_EQ(scene.find("recent")->text(QAccessible::Description), "SELECT id FROM rental");

    scene.diagram->setRelationMode(FieldRelation);
    EXPECT_EQ(childNames(scene.root())[3], "INNER JOIN: film.language_id = language (l).id");
    scene.diagram->joinLinks().front()->setJoinType(0);
    scene.diagram->joinLinks().front()->setLabel("NATURAL JOIN");
    EXPECT_EQ(childNames(scene.root())[3], "NATURAL JOIN: film.language_id = language (l).id");
}

TEST(CanvasAccessible, a_tour_through_actions_does_what_the_mouse_does) {
    AccessibleScene scene;
    std::vector<std::string> ticks;
    scene.film->item()->setFieldSelectionHandler(
        [&](QBLumoItem*, const std::string& field, bool on) {
            ticks.push_back(field + (on ? "+" : "-"));
        });

    ASSERT_TRUE(scene.act("film", Actions::setFocusAction()));
    EXPECT_TRUE(scene.find("film")->state().focused);
    EXPECT_EQ(scene.root()->focusChild(), scene.find("film"));
    ASSERT_TRUE(scene.act("film", "Select"));
    EXPECT_TRUE(scene.find("film")->state().selected);
    ASSERT_TRUE(scene.act("language (l)", "SelectToo"));
    EXPECT_EQ(scene.diagram->selectedItems().size(), 2u);
    ASSERT_TRUE(scene.act("language (l)", "SelectToo"));
    EXPECT_EQ(scene.diagram->selectedItems().size(), 1u);

    EXPECT_FALSE(scene.find("title")->state().checked);
    ASSERT_TRUE(scene.act("title", Actions::toggleAction()));
    EXPECT_TRUE(scene.find("title")->state().checked);
    ASSERT_TRUE(scene.act("title", Actions::setFocusAction()));
    EXPECT_TRUE(scene.find("title")->state().focused);
    EXPECT_FALSE(scene.find("id")->state().focused);
    ASSERT_TRUE(scene.act("*", Actions::toggleAction()));
    EXPECT_EQ(ticks, (std::vector<std::string>{"title+", "+"}));

    ASSERT_TRUE(scene.act("INNER JOIN: film and language (l)", Actions::pressAction()));
    EXPECT_EQ(scene.opened, std::vector<QBLumoJoinLink*>{scene.link});
    ASSERT_TRUE(scene.act("Edit the text", Actions::pressAction()));
    EXPECT_EQ(scene.edits, 1);

    int menus = 0;
    QObject::connect(scene.view.get(), &LumoUIScrollView::signalRightClickMenu,
                     [&](LumoUIScrollView*, const LumoUIRightClickParam& param) {
                         const auto block =
                             std::static_pointer_cast<RightClickBlock>(param.block());
                         EXPECT_EQ(block->clicked, scene.film->item());
                         EXPECT_EQ(block->extras.at("FieldName").toString(), "title");
                         ++menus;
                     });
    ASSERT_TRUE(scene.act("title", Actions::showMenuAction()));
    EXPECT_EQ(menus, 1);

    std::string drawn;
    scene.context.setFieldLinkDrawn([&](QBLumoItem*, const std::string& from, QBLumoItem*,
                                        const std::string& to) { drawn = from + "=" + to; });
    ASSERT_TRUE(scene.act("language_id", "DrawLink"));
    ASSERT_TRUE(scene.act("name", "DrawLink"));
    EXPECT_EQ(drawn, "language_id=name");

    EXPECT_EQ(scene.diagram->items().size(), 3u);
    EXPECT_EQ(scene.diagram->joinLinks().size(), 2u);
}

TEST(CanvasAccessible, bounds_are_the_painted_place_and_lead_back_at_any_zoom_and_scroll) {
    AccessibleScene scene;
    scene.film->setFields({"id", "title", "language_id", "a", "b", "c", "d", "e", "f", "g", "h"});
    scene.settle();
    const struct {
        double zoom;
        LumoControlPoint origin;
    } cases[] = {{1, {0, 0}}, {0.5, {0, 0}}, {1, {37, 41}}, {2, {100, 90}}};
    for (const auto& shown : cases) {
        scene.view->getControl()->setZoom(shown.zoom, {0, 0});
        scene.view->getControl()->setScrollOrigin(shown.origin);
        scene.settle();
        QAccessibleInterface* const root = scene.root();
        const QString place = QString("zoom %1, %2").arg(shown.zoom).arg(shown.origin.x);
        EXPECT_TRUE(isNear(
            scene.find("film")->rect(),
            scene.painted(scene.film->translateRect(scene.film->getBoundingRect(), nullptr))))
            << place.toStdString();
        EXPECT_TRUE(
            isNear(scene.find("title")->rect(), scene.painted(scene.film->listView()->translateRect(
                                                    scene.film->listView()->rowRect(2), nullptr))))
            << place.toStdString();
        int tried = 0;
        for (int i = 0; i < root->childCount(); ++i) {
            QAccessibleInterface* const child = root->child(i);
            EXPECT_EQ(child->parent(), root);
            EXPECT_EQ(root->indexOfChild(child), i);
            const QPoint middle = child->rect().center();
            const bool inSight =
                QRect(scene.view->viewport()->mapToGlobal({0, 0}), scene.view->viewport()->size())
                    .contains(middle);
            if (inSight) {
                EXPECT_EQ(root->childAt(middle.x(), middle.y()), child);
            }
            for (int row = 0; row < child->childCount(); ++row) {
                QAccessibleInterface* const part = child->child(row);
                EXPECT_EQ(part->parent(), child);
                EXPECT_EQ(child->indexOfChild(part), row);
                if (part->state().offscreen) continue;
                const QPoint inside = part->rect().center();
                EXPECT_EQ(child->childAt(inside.x(), inside.y()), part)
                    << nameOf(part).toStdString();
                ++tried;
            }
        }
        EXPECT_GT(tried, 5);
    }
    EXPECT_TRUE(scene.find("h")->state().offscreen);
    scene.film->scrollToRow(11);
    EXPECT_FALSE(scene.find("h")->state().offscreen);
}

TEST(CanvasAccessible, nothing_is_reached_through_the_interface_of_what_has_gone) {
    AccessibleScene scene;
    QAccessibleInterface* const film = scene.find("film");
    const QAccessible::Id ids[] = {
        QAccessible::uniqueId(film), QAccessible::uniqueId(scene.find("title")),
        QAccessible::uniqueId(scene.find("language (l)")),
        QAccessible::uniqueId(scene.find("name")), QAccessible::uniqueId(scene.root()->child(3))};
    // A row that is no more, while its item lives.
    QAccessibleInterface* const last = film->child(3);
    scene.film->setFields({"id"});
    EXPECT_FALSE(last->isValid());
    EXPECT_TRUE(last->text(QAccessible::Name).isEmpty());
    EXPECT_TRUE(last->state().invalid);
    last->actionInterface()->doAction(Actions::toggleAction());

    scene.diagram->selectObject(scene.film->item(), false);
    scene.diagram->deleteSelection();
    EXPECT_EQ(QAccessible::accessibleInterface(ids[0]), nullptr);
    EXPECT_EQ(QAccessible::accessibleInterface(ids[1]), nullptr);
    // Destroyed in its place, without a word to the diagram.
    delete scene.language->item();
    const auto isReached = [](QAccessible::Id id) {
        const QAccessibleInterface* const found = QAccessible::accessibleInterface(id);
        return found && found->isValid();
    };
    EXPECT_FALSE(isReached(ids[2]) || isReached(ids[3]));
    scene.settle();
    for (const QAccessible::Id id : ids)
        EXPECT_EQ(QAccessible::accessibleInterface(id), nullptr);
    EXPECT_EQ(childNames(scene.root()).mid(0, 1).join("|"), "recent");

    // Another diagram, then none.
    const QAccessible::Id recent = QAccessible::uniqueId(scene.find("recent"));
    QBLumoDiagram other(&scene.context, scene.view->getControl());
    scene.context.setActiveDiagram(scene.view->getControl(), &other);
    EXPECT_EQ(QAccessible::accessibleInterface(recent), nullptr);
    scene.context.setActiveDiagram(scene.view->getControl(), scene.diagram.get());
    const QAccessible::Id again = QAccessible::uniqueId(scene.find("recent"));
    scene.diagram.reset();
    EXPECT_EQ(QAccessible::accessibleInterface(again), nullptr);
    EXPECT_EQ(scene.find("recent"), nullptr);
}

TEST(CanvasAccessible, rows_of_a_wide_table_are_made_when_asked_for) {
    AccessibleScene scene;
    std::vector<std::string> fields;
    for (int i = 0; i < 1600; ++i)
        fields.push_back("column_" + std::to_string(i));
    scene.film->setFields(fields);
    scene.settle();
    QAccessibleInterface* const film = scene.root()->child(0);
    EXPECT_EQ(film->childCount(), 1601);
    EXPECT_EQ(nameOf(film->child(1600)), "column_1599");
    EXPECT_LT(scene.view->accessible()->interfaceCount(), 10u);
    EXPECT_LT(scene.film->listView()->existingCells().size(), 40u);
    // The view takes all of them with it.
    const QAccessible::Id id = QAccessible::uniqueId(film);
    scene.view.reset();
    EXPECT_EQ(QAccessible::accessibleInterface(id), nullptr);
}

}  // namespace
}  // namespace QB::DiagramLumo
