#pragma once

#include <QSplitter>
#include <QTimer>
#include <QUndoStack>
#include <array>

#include "builder/builder_desk.h"
#include "canvas/diagram/canvas_dump.h"
#include "canvas/view/canvas_commands.h"
#include "diagrampanel/diagram_panel_widget.h"
#include "support/diagram_places.h"

namespace QB::Test {

/// The builder over tables that refer to each other, with all that a monkey needs.
class MonkeyDesk : public BuilderDesk {
public:
    explicit MonkeyDesk(Delivery delivery) : BuilderDesk(delivery) {
        server.set("", {{"main", IdentifierTypeSchema}, {"other", IdentifierTypeSchema}});
        server.set("other", {{"t", IdentifierTypeTable}, {"u", IdentifierTypeView}});
        server.set("other.t", fields({"a", "z"}));
        server.set("other.u", fields({"a", "d", "z"}));
        serve();
        window.resize(1200, 900);
        window.activateWindow();
        settle();
    }

    /// What a host does with an engine of its own.
    void serve() {
        live()->registerForeignKeySearcher(
            [](const QBIdentifierObjectPath& object, const auto& others) {
                QBForeignKeys keys;
                for (const QBIdentifierObjectPath& other : others)
                    if (object.object == "u" || other.object == "u")
                        if (object.object == "t" || other.object == "t")
                            keys.insert({{object.schema, "u", "a"}, {object.schema, "t", "a"}});
                return keys;
            });
        reload();
    }
    /// The candidates, all of them.
    void reload() {
        using Path = std::vector<std::string>;
        for (const Path& path : {Path{}, Path{"main"}, Path{"main", "v"}})
            live()->addRefreshIdentifierCandidateChildrenRequest(path, true);
        live()->refreshRequestedIdentifierCandidateChildren(true);
    }

    QBDiagramPanelWidget* panel() const {
        return builder->findChild<QBDiagramPanelWidget*>("diagramPanel");
    }
    DiagramPlaces places() const { return DiagramPlaces(panel()->drawer()); }
    QTreeWidget* tree() const {
        return builder->findChild<QTreeWidget*>("diagramPaneObjectTreeWidget");
    }
    QTabBar* tabBar() const { return pages()->tabBar(); }

    /// At once: QTest presses Ctrl by itself first, whereafter the window may be another one.
    void press(const QString& keys, bool isRepeated = false) {
        const int code = QKeySequence(keys)[0];
        const auto modifiers = Qt::KeyboardModifiers(code & int(Qt::KeyboardModifierMask));
        const auto key = Qt::Key(code & ~int(Qt::KeyboardModifierMask));
        if (key >= Qt::Key_Left && key <= Qt::Key_Down) keyReach += 3;
        qt_handleKeyEvent(activeWindow(&window), QEvent::KeyPress, key, modifiers, {}, isRepeated);
        QCoreApplication::processEvents();
    }
    /// How far arrow keys can have taken items out of the canvas: no edge holds these back.
    int keyReach = 0;

    /// Everything arrives, every popup and every gesture ends.
    void rest() {
        isHeld = false;
        settle();
        for (int i = 0; i < 8 && isPopupOpen(); ++i) {
            press("Esc");
            settle();
        }
        for (int i = 0; i < 2 && panel()->isGestureUnderWay(); ++i) {
            panel()->drawer()->getView()->setFocus();
            press("Esc");
        }
        lookAtPage();
        settle();
    }

    // ---- what an action can have an effect on -------------------------------------------------

    enum Part { Query, Canvas, Host };
    using State = std::array<std::string, 3>;  // by Part

    State state() const {
        return {queryState(), canvasState(), hostState().join(' ').toStdString()};
    }
    /// For what cannot be seen.
    int effects = 0;

private:
    std::string queryState() const {
        if (!live()) return "dead";
        std::string state = live()->recordQuery();
        for (const long id : live()->layerPath())
            state += ' ' + std::to_string(id);
        return state;
    }
    std::string canvasState() const {
        LumoControl* const control = panel()->drawer()->getControl();
        const LumoControlPoint origin = control->getScrollOrigin();
        return dumpCanvas(panel()->drawer()->diagram()) + std::to_string(control->getZoom()) + ' ' +
               std::to_string(origin.x) + ' ' + std::to_string(origin.y);
    }
    QStringList hostState() const {
        QStringList all;
        const auto add = [&all](const auto& value) {
            all << QVariant(value).toString();
        };
        const QWidget* const popup = QApplication::activePopupWidget();
        const QWidget* const focus = QApplication::focusWidget();
        all << (popup ? popup->metaObject()->className() : "no popup")
            << (focus ? focus->objectName() : "no focus");
        for (const char* const text : {"text", "plainText"})
            if (focus) add(focus->property(text));
        for (const int number :
             {effects, window.width(), window.height(), pages()->currentIndex(), int(isHeld),
              server.fetchCount(), int(host.isDark), int(pages()->isEnabled()),
              listPanel ? view()->currentRow() : -1, tree()->currentIndex().row(),
              int(builder->canvasCommands()->isOverviewVisible())})
            add(number);
        for (const QSplitter* splitter : builder->findChildren<QSplitter*>())
            for (const int size : splitter->sizes())
                add(size);
        for (QTreeWidgetItemIterator row(tree()); *row; ++row)
            add((*row)->isExpanded());
        if (!live()) return all;
        add(int(live()->id()));
        add(int(live()->databaseType()));
        add(QString::fromStdString(live()->currentSchema()));
        return all;
    }
};

}  // namespace QB::Test
