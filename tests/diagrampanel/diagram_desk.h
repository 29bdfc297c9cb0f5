#pragma once

#include <QRegularExpression>
#include <QTreeWidget>

#include "canvas/base/context.h"
#include "canvas/controls/check_box.h"
#include "canvas/controls/list_view.h"
#include "canvas/diagram/canvas_dump.h"
#include "canvas/diagram/diagram.h"
#include "canvas/drawer/diagram_drawer_linux.h"
#include "canvas/items/base_item_body.h"
#include "canvas/items/item.h"
#include "canvas/links/join_link.h"
#include "canvas/view/lumo_ui_view.h"
#include "diagrampanel/diagram_panel_widget.h"
#include "platform/lumo/lumo_control.h"
#include "support/panel_desk.h"

namespace QB::Test {

using namespace DiagramLumo;

/// A panel that can be told where a drag comes from.
class DropPanel : public QBDiagramPanelWidget {
public:
    QObject* source = nullptr;

protected:
    QObject* dragSource(const QDropEvent* event) const override {
        return source ? source : QBDiagramPanelWidget::dragSource(event);
    }
};

/// The diagram in a window, over the tables t (a, b, c), u (a, d), v and w (a) of the schema main;
/// u.a refers to t.a. Besides the words of PanelDesk:
///
///     tick t.a; pull t.a u.d; select t; also u; right t.a; double t; link 0 also; mode field
///     add w; drop w 300 200; sql SELECT ...; out; reset; mark; keep; load; record; restore
///     server t a b; busy; free: while the server is busy nothing is delivered
class DiagramDesk : public PanelDesk {
public:
    explicit DiagramDesk(Delivery delivery) : PanelDesk(delivery, DatabaseTypeSQLite, {"v", "w"}) {
        engine->registerForeignKeySearcher(
            [](const QBIdentifierObjectPath& object, const auto& others) {
                const QBIdentifierObjectPath t{"main", "t"}, u{"main", "u"};
                const bool isAsked =
                    (object == t && others.count(u)) || (object == u && others.count(t));
                return isAsked ? QBForeignKeys{{{"main", "u", "a"}, {"main", "t", "a"}}}
                               : QBForeignKeys();
            });
        panel = std::make_unique<DropPanel>();
        new QVBoxLayout(&window);
        window.layout()->addWidget(panel.get());
        window.resize(1000, 700);
        window.show();
        panel->setEngine(engine.get());
        window.activateWindow();
        QObject::connect(panel.get(), &QBDiagramPanelWidget::signalJumpToPanel,
                         [this](int element) { jumps += QString::number(element); });
        settle();
    }
    ~DiagramDesk() override {
        free();
        panel.reset();
    }

    // ---- what the canvas shows ----------------------------------------------------------------

    QBLumoDiagram* diagram() const { return panel->drawer()->diagram(); }
    QBLumoUIView* view() const { return panel->drawer()->getView(); }

    /// The dump of the canvas in one line, without rectangles, numbers and what does not show:
    /// "t: * [a] b c; u selected: * a d; inner t.a=u.a".
    QString canvas() const {
        static const QRegularExpression item("^item #\\d+ \"(.*)\" at \\S+ \\S+(.*)$");
        static const QRegularExpression row("^  \\[(.)\\] (.+)$");
        static const QRegularExpression link("^link (\\w+)(.*)$");
        static const QRegularExpression pair("^  (#\\d.*) to (#\\d[^:]*)");
        QStringList items, links;
        QString* last = nullptr;
        for (const QString& line : QString::fromStdString(dumpCanvas(diagram())).split('\n')) {
            if (const auto found = item.match(line); found.hasMatch()) {
                const bool isSelected = found.captured(2).contains(" selected");
                items += found.captured(1) + (isSelected ? " selected:" : ":");
                last = &items.last();
            } else if (const auto field = row.match(line); field.hasMatch()) {
                const QString name = field.captured(2).remove('"');
                *last += field.captured(1) == "x" ? " [" + name + ']' : ' ' + name;
            } else if (const auto kind = link.match(line); kind.hasMatch()) {
                last = nullptr;
                if (kind.captured(2).contains(" hidden")) continue;
                links += kind.captured(1);
                last = &links.last();
            } else if (const auto ends = pair.match(line); ends.hasMatch() && last) {
                *last += ' ' + plain(ends.captured(1)) + '=' + plain(ends.captured(2));
            }
        }
        items.sort();
        links.sort();
        return (items + links).join("; ");
    }
    static QString plain(QString end) {
        return end.remove('"').remove(QRegularExpression("^#\\d+ "));
    }

    QBLumoItem* item(const QString& title) const {
        for (QBLumoItem* each : diagram()->items()) {
            if (QString::fromStdString(each->getBody()->titleText()) == title) return each;
        }
        return nullptr;
    }

    /// Where items stand: "t 100,100; u 400,100".
    QString places() const {
        QStringList all;
        for (const QBLumoItem* each : diagram()->items()) {
            const LumoPoint at = each->getRect().origin;
            all += QString::fromStdString(each->getBody()->titleText()) +
                   QString(" %1,%2").arg(at.x).arg(at.y);
        }
        all.sort();
        return all.join("; ");
    }

    // ---- events -------------------------------------------------------------------------------

    bool runOwn(const QString& word, const QString& rest) override {
        const QString first = rest.section(' ', 0, 0);
        const QString second = rest.section(' ', 1, 1);
        if (word == "tick") return clickAtView(boxOf(first));
        if (word == "pull") return dragTo(placeOf(first), placeOf(second));
        if (word == "select") return clickAtView(placeOf(first));
        if (word == "also") return clickAtView(placeOf(first), Qt::LeftButton, Qt::ControlModifier);
        if (word == "right") return clickAtView(placeOf(first), Qt::RightButton);
        if (word == "link")
            return clickAtView(middleOfLink(first.toUInt()), Qt::LeftButton,
                               second == "also" ? Qt::ControlModifier : Qt::NoModifier);
        if (word == "double") return doubleClick(placeOf(first));
        if (word == "submenu") return openSubmenu(rest);
        if (word == "editor")
            return QTest::qWaitFor([] { return QApplication::activePopupWidget(); });
        if (word == "mode") return clickOn(panel->findChild<QWidget*>(first + "RelRadioButton"));
        if (word == "add") return add(first);
        if (word == "drop") return drop(first, {second.toInt(), rest.section(' ', 2, 2).toInt()});
        if (word == "sql") return parse(rest), true;
        if (word == "server") return serve(rest);
        if (word == "mark") return marked = places().split("; "), true;
        if (word == "keep") return layout = panel->saveLayout(), true;
        if (word == "load") return panel->restoreLayout(layout), true;
        if (word == "record") return record = engine->recordQuery(), true;
        if (word == "restore") return engine->restoreQuery(record, {}, this);
        if (word == "schema") return engine->setCurrentSchema(rest.toStdString()), true;
        if (word == "out") return engine->popCurrentLayerTopLevelQueryComponent(), true;
        if (word == "reset") return engine->resetUi(), true;
        if (word == "busy") return server.hold(), isHeld = true, true;
        return word == "free" && free();
    }
    bool free() {
        server.release();
        isHeld = false;
        return true;
    }

    /// In the view: of a row "t.a", or of the title "t". A null point: not there.
    QPoint placeOf(const QString& name) const {
        QBLumoItem* const of = item(name.section('.', 0, 0));
        if (!of) return {};
        diagram()->layout();
        QBLumoBaseItemBody* const body = of->getBody();
        if (!name.contains('.')) return inView(body->titleRect(), body);
        QBLumoListView::Cell* const cell = cellOf(name);
        return cell ? inView(cell->getBoundingRect(), cell) : QPoint();
    }
    QPoint boxOf(const QString& name) const {
        QBLumoListView::Cell* const cell = cellOf(name);
        const auto boxes =
            cell ? cell->findChildren<QBLumoCheckBox>(true) : std::vector<QBLumoCheckBox*>();
        return boxes.empty() ? QPoint() : inView(boxes[0]->getBoundingRect(), boxes[0]);
    }
    /// Of the links that show, in the order of children.
    QPoint middleOfLink(std::size_t index) const {
        diagram()->layout();
        for (QBLumoJoinLink* link : diagram()->joinLinks()) {
            if (!link->getVisible() || index-- > 0) continue;
            return toQt(panel->drawer()->getContext()->translatePointToControlSpace(
                link->midPoint(), link, panel->drawer()->getControl()));
        }
        return {};
    }

    /// "t a b": the table has these fields now.
    bool serve(const QString& text) {
        const QStringList names = text.split(' ');
        FakeServer::Objects objects;
        for (const QString& name : names.mid(1))
            objects.emplace_back(name.toStdString(), IdentifierTypeField);
        server.set("main." + names[0].toStdString(), objects);
        return true;
    }

    std::unique_ptr<DropPanel> panel;
    QString jumps;       // the clauses that were to come to the front
    QStringList marked;  // where items stood
    std::string layout;
    std::string record;

    static bool openSubmenu(const QString& text) {
        QWidget* const menu = QApplication::activePopupWidget();
        return choose(text) &&
               QTest::qWaitFor([menu] { return QApplication::activePopupWidget() != menu; });
    }

private:
    static QPoint toQt(LumoPoint point) { return {point.x, point.y}; }
    QPoint inView(const LumoRect& rect, LumoObject* object) const {
        const LumoRect place = panel->drawer()->getContext()->translateRectToControlSpace(
            rect, object, panel->drawer()->getControl());
        return toQt(place.origin) + QPoint(place.size.width / 2, place.size.height / 2);
    }

    QBLumoListView::Cell* cellOf(const QString& name) const {
        QBLumoItem* const of = item(name.section('.', 0, 0));
        if (!of) return nullptr;
        const auto& fields = of->getBody()->fieldNames();
        const auto found =
            std::find(fields.begin(), fields.end(), name.section('.', 1).toStdString());
        if (name.endsWith(".*")) return of->getBody()->listView()->cellAt(0);
        return found == fields.end() ? nullptr
                                     : of->getBody()->listView()->cellAt(
                                           static_cast<std::size_t>(found - fields.begin()) + 1);
    }

    bool clickAtView(QPoint point, Qt::MouseButton button = Qt::LeftButton,
                     Qt::KeyboardModifiers modifiers = {}) {
        return !point.isNull() && clickAt(view()->viewport(), point, button, modifiers);
    }
    bool doubleClick(QPoint point) {
        if (!clickAtView(point)) return false;
        QTest::mouseDClick(window.windowHandle(), Qt::LeftButton, {},
                           view()->viewport()->mapTo(&window, point));
        return true;
    }
    bool dragTo(QPoint from, QPoint to) {
        if (from.isNull() || to.isNull()) return false;
        const auto inWindow = [this](QPoint point) {
            return view()->viewport()->mapTo(&window, point);
        };
        QWindow* const handle = window.windowHandle();
        QTest::mouseMove(handle, inWindow(from));
        QTest::mousePress(handle, Qt::LeftButton, {}, inWindow(from));
        for (const int step : {1, 2, 3, 4})
            QTest::mouseMove(handle, inWindow(from + (to - from) * step / 4));
        QTest::mouseRelease(handle, Qt::LeftButton, {}, inWindow(to));
        return true;
    }

    QBIdentifierCandidate* candidate(const QString& table) const {
        auto* const schema = engine->findChildCandidate(nullptr, "main");
        return engine->findChildCandidate(schema, table.toStdString());
    }
    bool add(const QString& table) {
        panel->addIdentifierCandidateToDiagram(candidate(table));
        return true;
    }
    bool drop(const QString& table, QPoint point) {
        QTreeWidget tree;
        auto* const row = new QTreeWidgetItem(&tree);
        row->setData(0, 257, qulonglong(reinterpret_cast<quintptr>(candidate(table))));
        tree.setCurrentItem(row);
        panel->source = &tree;
        QMimeData mime;
        QDragEnterEvent enter(point, Qt::CopyAction, &mime, Qt::LeftButton, {});
        QCoreApplication::sendEvent(panel.get(), &enter);  // or Qt delivers no drop
        QDropEvent event(point, Qt::CopyAction, &mime, Qt::LeftButton, {});
        event.ignore();
        QCoreApplication::sendEvent(panel.get(), &event);
        panel->source = nullptr;
        return enter.isAccepted() && event.isAccepted();
    }
};

}  // namespace QB::Test
