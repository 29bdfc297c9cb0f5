#pragma once

#include <QAccessible>
#include <QApplication>
#include <QNativeGestureEvent>
#include <QPainter>
#include <QTemporaryDir>
#include <QWheelEvent>

#include "canvas_monkey/monkey_desk.h"
#include "platform/lumo/lumo_timer.h"

namespace QB::DiagramLumo {

/// Acts on the desk at random, by the window's events and as a host does, and remembers what it
/// did.
class Monkey {
public:
    explicit Monkey(MonkeyDesk* desk) : m_desk(*desk), m_dice(desk->dice) {}

    void act() {
        using Act = void (Monkey::*)();
        struct Choice {
            int weight;
            const char* name;
            Act act;
        };
        static const std::vector<Choice> acts = {{14, "press", &Monkey::press},
                                                 {30, "move", &Monkey::move},
                                                 {16, "release", &Monkey::release},
                                                 {5, "click", &Monkey::click},
                                                 {3, "double click", &Monkey::doubleClick},
                                                 {4, "drag", &Monkey::drag},
                                                 {5, "wheel", &Monkey::wheel},
                                                 {2, "pinch", &Monkey::pinch},
                                                 {22, "key", &Monkey::pressKey},
                                                 {2, "window", &Monkey::changeWindow},
                                                 {2, "focus", &Monkey::moveFocus},
                                                 {2, "look", &Monkey::changeLook},
                                                 {4, "add", &Monkey::add},
                                                 {3, "remove", &Monkey::remove},
                                                 {6, "edit", &Monkey::edit},
                                                 {3, "command", &Monkey::command},
                                                 {3, "accessible", &Monkey::askAccessible},
                                                 {2, "mood", &Monkey::changeMood},
                                                 {1, "export", &Monkey::exportPicture},
                                                 {1, "diagram", &Monkey::changeDiagram}};
        int number = m_dice.pick(130);
        size_t chosen = 0;
        while (number >= acts[chosen].weight)
            number -= acts[chosen++].weight;
        m_story << acts[chosen].name;
        (this->*acts[chosen].act)();
    }
    /// Lets go of everything and takes the pointer away.
    void rest() {
        if (m_desk.menu) m_desk.menu->close();
        while (m_held != Qt::NoButton)
            releaseButton();
        m_desk.window.show();
        MonkeyDesk::settle();
        nudge();
        QEvent leave(QEvent::Leave);
        QCoreApplication::sendEvent(m_desk.view->viewport(), &leave);
    }
    /// Moves within the view.
    void nudge() {
        goTo(m_desk.view->geometry().center() + QPoint(m_dice.pick(3), 0));
        MonkeyDesk::settle();
    }
    bool holdsButton() const { return m_held != Qt::NoButton; }
    QString story() const { return m_story.mid(m_story.size() - 25).join(", "); }

private:
    void note(const QString& what) { m_story.last() += ' ' + what; }

    // ---- the mouse ----

    static const std::vector<LumoObject*>& deepest(LumoObject* object,
                                                   std::vector<LumoObject*>* all) {
        all->push_back(object);
        for (LumoObject* child : object->getChildren())
            deepest(child, all);
        return *all;
    }
    /// In the window: somewhere, or on an object that shows.
    QPoint place() {
        QWidget* const viewport = m_desk.view->viewport();
        LumoObject* const child = m_desk.anyChild();
        if (!child || m_dice.isOneIn(4))
            return {m_dice.pick(m_desk.window.width() + 20) - 10,
                    m_dice.pick(m_desk.window.height() + 20) - 10};
        std::vector<LumoObject*> all;
        LumoObject* const object = m_dice.pickFrom(deepest(child, &all));
        const LumoSize size = object->getRect().size;
        LumoPoint point{m_dice.pick(std::max(size.width, 1)),
                        m_dice.pick(std::max(size.height, 1))};
        const auto* const link = dynamic_cast<QBLumoJoinLink*>(child);
        if (link) point = link->midPoint();
        if (object == child && !link && m_dice.isOneIn(2)) point.y = 4 + m_dice.pick(24);  // title
        const LumoRect shown = m_desk.view->getControl()->getDisplayRect();
        const LumoPoint at = object->translatePoint(point, m_desk.diagram.get());
        if (!lumoPointInRect(at, shown) && m_dice.isOneIn(3))
            m_desk.view->getControl()->scrollToVisible({at, {1, 1}}, m_dice.isOneIn(2));
        return viewport->mapTo(&m_desk.window, m_desk.shownAt(at));
    }
    Qt::KeyboardModifiers modifiers() {
        static const std::vector<Qt::KeyboardModifiers> some = {
            Qt::ShiftModifier, Qt::ControlModifier, Qt::AltModifier,
            Qt::ShiftModifier | Qt::ControlModifier};
        return m_dice.isOneIn(4) ? m_dice.pickFrom(some) : Qt::NoModifier;
    }
    void send(QEvent::Type type, Qt::MouseButton button) {
        m_time += 1 + m_dice.pick(40);
        qt_handleMouseEvent(m_desk.window.windowHandle(), m_pointer,
                            m_desk.window.mapToGlobal(m_pointer), m_held, button, type, m_modifiers,
                            m_time);
        if (!m_dice.isOneIn(4)) QCoreApplication::processEvents();
    }
    void pressButton(Qt::MouseButton button) {
        if (m_held & button) return;
        m_held |= button;
        send(QEvent::MouseButtonPress, button);
    }
    void releaseButton() {
        std::vector<Qt::MouseButton> held;
        for (const Qt::MouseButton button : {Qt::LeftButton, Qt::RightButton, Qt::MiddleButton})
            if (m_held & button) held.push_back(button);
        if (held.empty()) return;
        const Qt::MouseButton button = m_dice.pickFrom(held);
        m_held &= ~Qt::MouseButtons(button);
        send(QEvent::MouseButtonRelease, button);
    }
    void goTo(QPoint point) {
        m_pointer = point;
        send(QEvent::MouseMove, Qt::NoButton);
    }
    Qt::MouseButton anyButton() {
        static const std::vector<Qt::MouseButton> buttons = {
            Qt::LeftButton, Qt::LeftButton, Qt::LeftButton, Qt::RightButton, Qt::MiddleButton};
        return m_dice.pickFrom(buttons);
    }

    void press() {
        m_modifiers = modifiers();
        if (m_dice.isOneIn(2)) m_pointer = place();
        pressButton(anyButton());
        note(QString("%1 at %2,%3").arg(int(m_held)).arg(m_pointer.x()).arg(m_pointer.y()));
    }
    void move() {
        if (m_dice.isOneIn(8)) m_modifiers = modifiers();
        const QPoint near(m_dice.pick(61) - 30, m_dice.pick(61) - 30);
        goTo(m_dice.isOneIn(2) ? place() : m_pointer + near);
        note(QString("to %1,%2").arg(m_pointer.x()).arg(m_pointer.y()));
    }
    void release() { releaseButton(); }
    void click() {
        m_modifiers = modifiers();
        m_pointer = place();
        pressButton(anyButton());
        releaseButton();
        note(QString("at %1,%2").arg(m_pointer.x()).arg(m_pointer.y()));
    }
    void doubleClick() {
        click();
        pressButton(Qt::LeftButton);
        if (m_dice.isOneIn(3)) goTo(m_pointer + QPoint(12, 3));
        releaseButton();
    }
    void drag() {
        goTo(place());
        pressButton(anyButton());
        for (int steps = 1 + m_dice.pick(4); steps > 0; --steps)
            goTo(place());
        if (m_dice.isOneIn(2)) releaseButton();
    }
    void wheel() {
        QWidget* const viewport = m_desk.view->viewport();
        const QPoint at = viewport->mapFrom(&m_desk.window, place());
        const int notches = m_dice.pick(7) - 3;
        const QPoint angle(m_dice.isOneIn(5) ? 40 * notches : 0, 120 * notches);
        QWheelEvent event(at, viewport->mapToGlobal(at),
                          m_dice.isOneIn(2) ? QPoint(0, notches) : QPoint(), angle, m_held,
                          modifiers(), Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(viewport, &event);
    }
    void pinch() {
        QWidget* const viewport = m_desk.view->viewport();
        const QPoint at = viewport->mapFrom(&m_desk.window, place());
        QNativeGestureEvent event(Qt::ZoomNativeGesture, nullptr, at, at, at,
                                  m_dice.isOneIn(2) ? 0.2 : -0.2, 0, 0);
        QCoreApplication::sendEvent(viewport, &event);
    }

    // ---- keys and focus ----

    void pressKey() {
        static const std::vector<const char*> keys = {
            "Tab",         "Tab",       "Shift+Tab",  "Space",     "Ctrl+Space", "Ctrl+A",
            "Esc",         "Left",      "Right",      "Up",        "Down",       "Down",
            "PgUp",        "PgDown",    "Return",     "E",         "F2",         "Menu",
            "Shift+F10",   "Del",       "Ctrl++",     "Ctrl+-",    "Ctrl+0",     "Ctrl+9",
            "F",           "F",         "Home",       "End",       "L",          "L",
            "R",           "Ctrl+Left", "Ctrl+Right", "Ctrl+Up",   "Shift+Left", "Return",
            "Ctrl+Return", "Ctrl+L",    "X",          "Shift+Down"};
        const char* const name = m_dice.pickFrom(keys);
        note(name);
        const int code = QKeySequence(name)[0];
        const auto held = Qt::KeyboardModifiers(code) & Qt::KeyboardModifierMask;
        const Qt::Key key = Qt::Key(code & ~int(Qt::KeyboardModifierMask));
        QWindow* const window = m_desk.window.windowHandle();
        for (int times = m_dice.isOneIn(5) ? 5 : 1, i = 0; i < times; ++i)
            qt_handleKeyEvent(window, QEvent::KeyPress, key, held, {}, i > 0);
        qt_handleKeyEvent(window, QEvent::KeyRelease, key, held);
    }
    void moveFocus() {
        static const std::vector<Qt::FocusReason> reasons = {
            Qt::TabFocusReason, Qt::BacktabFocusReason, Qt::OtherFocusReason};
        if (m_dice.isOneIn(3)) m_desk.window.findChild<QLineEdit*>()->setFocus();
        m_desk.view->setFocus(m_dice.pickFrom(reasons));
        if (m_desk.menu && m_dice.isOneIn(2)) m_desk.menu->close();
    }
    void changeWindow() {
        switch (m_dice.pick(4)) {
            case 0:
                return m_desk.window.resize(200 + m_dice.pick(600), 150 + m_dice.pick(400));
            case 1:
                m_desk.view->hide();
                MonkeyDesk::settle();
                return m_desk.view->show();
            case 2:
                m_desk.window.hide();
                MonkeyDesk::settle();
                m_desk.window.show();
                return m_desk.window.activateWindow();
            default:
                return m_desk.window.resize(520, 440);
        }
    }
    void changeLook() {
        if (m_dice.isOneIn(2)) MonkeyDesk::isDark() = !MonkeyDesk::isDark();
        if (m_dice.isOneIn(2)) return m_desk.view->applyTheme();
        QPalette palette = m_desk.view->palette();
        palette.setColor(QPalette::Base, MonkeyDesk::isDark() ? Qt::black : Qt::white);
        m_desk.view->setPalette(palette);
        m_desk.view->applyTheme();
    }

    // ---- what a host does ----

    std::vector<std::string> names() {
        std::vector<std::string> fields;
        for (int i = m_dice.isOneIn(6) ? 40 : m_dice.pick(9); i > 0; --i)
            fields.push_back("f" + std::to_string(m_dice.pick(12)));
        return fields;
    }
    QBLumoBaseItemBody* newBody() {
        if (m_dice.isOneIn(3)) {
            auto* const text = new QBLumoTextBasedItemBody;
            text->setText("SELECT a, b\nFROM a_table_with_a_long_name");
            text->setRect({0, 0, 240, 120});
            return text;
        }
        auto* const table = new QBLumoDatabaseItemBody;
        table->setTableName("table" + std::to_string(m_dice.pick(100)));
        return table;
    }
    void add() {
        QBLumoDiagram* const diagram = m_desk.diagram.get();
        if (m_dice.isOneIn(2)) return addLink();
        if (diagram->items().size() > 14) return remove();
        auto* const item = new QBLumoItem;
        QBLumoBaseItemBody* const body = newBody();
        if (m_dice.isOneIn(2)) body->setFields(names());
        item->setBody(body);
        diagram->addChild(item);
        body->setFields(names());
        m_desk.listenTo(item);
        if (m_dice.isOneIn(2)) return diagram->autoLayoutChild(item);
        item->setRect({{m_dice.pick(800), m_dice.pick(600)}, item->getRect().size});
    }
    void addLink() {
        QBLumoItem* const from = m_desk.anyItem();
        QBLumoItem* const to = m_desk.anyItem();
        if (!from || !to || m_desk.diagram->joinLinks().size() > 30) return;
        QBLumoJoinLink* const link =
            addDemoLink(m_desk.diagram.get(), from, "f" + std::to_string(m_dice.pick(12)), to, "id",
                        m_dice.pick(7));
        if (m_dice.isOneIn(3)) link->playPromptAnimation();
    }
    void remove() {
        LumoObject* const child = m_desk.anyChild();
        if (!child) return;
        if (m_dice.isOneIn(30)) return m_desk.diagram->clearChildren();
        if (!m_dice.isOneIn(4)) return m_desk.destroy(child);
        m_desk.diagram->removeChild(child);  // and back
        if (m_dice.isOneIn(2)) MonkeyDesk::settle();
        m_desk.diagram->addChild(child, 0);
    }
    void edit() {
        if (m_dice.isOneIn(3)) return editLink();
        QBLumoItem* const item = m_desk.anyItem();
        if (!item) return;
        QBLumoBaseItemBody* const body = item->getBody();
        switch (m_dice.pick(7)) {
            case 0:
            case 1:
                note("fields");
                return body->setFields(names());
            case 2:
                note("body");
                item->setBody(newBody());
                item->getBody()->setFields(names());
                return m_desk.listenTo(item);
            case 3:
                note("alias");
                return body->setAlias(m_dice.isOneIn(2) ? "" : "a long alias of the source");
            case 4:
                note("ticks");
                if (m_dice.isOneIn(2)) return body->setFieldSelection({"id", "f1"}, true);
                return body->clearFieldSelection();
            case 5:
                note("visible");
                return item->setVisible(!item->getVisible() || m_dice.isOneIn(2));
            default:
                note("text or scroll");
                if (auto* const text = dynamic_cast<QBLumoTextBasedItemBody*>(body))
                    return text->setText("SELECT " + std::to_string(m_dice.pick(1000)));
                return body->scrollToRow(size_t(m_dice.pick(40)));
        }
    }
    void editLink() {
        const auto links = m_desk.diagram->joinLinks();
        if (links.empty()) return;
        QBLumoJoinLink* const link = m_dice.pickFrom(links);
        note("link");
        switch (m_dice.pick(4)) {
            case 0:
                return link->setJoinType(m_dice.pick(7));
            case 1:
                return link->setLabel(m_dice.isOneIn(2) ? "<>" : "");
            case 2:
                return link->removeAllAdaptors();
            default:
                return link->playPromptAnimation();
        }
    }
    void command() {
        QBLumoDiagram* const diagram = m_desk.diagram.get();
        switch (m_dice.pick(9)) {
            case 0:
                return m_desk.commands->arrange();
            case 1:
                return m_desk.commands->undoArrange();
            case 2:
                return m_desk.commands->setOverviewVisible(m_dice.isOneIn(2));
            case 3:
                return m_desk.commands->fitToView();
            case 4:
                return diagram->setRelationMode(1 + m_dice.pick(2));
            case 5:
                return diagram->deleteSelection();
            case 6:
                return diagram->selectAll();
            case 7:
                return diagram->setFocusedObject(m_desk.anyChild(), m_dice.pick(6) - 1);
            default:
                return m_desk.view->getControl()->scrollToVisible(
                    {m_dice.pick(2000), m_dice.pick(1000), 50, 50}, m_dice.isOneIn(2));
        }
    }
    void changeMood() { m_desk.mood = static_cast<Mood>(m_dice.pick(3)); }
    void changeDiagram() {
        LumoControl* const control = m_desk.view->getControl();
        if (m_dice.isOneIn(3)) return m_desk.showNewDiagram();
        m_desk.context.setActiveDiagram(control, nullptr);
        if (m_dice.isOneIn(2)) MonkeyDesk::settle();
        if (m_dice.isOneIn(2)) m_desk.diagram->setRect({0, 0, 900 + m_dice.pick(3000), 1200});
        m_desk.context.setActiveDiagram(control, m_desk.diagram.get());
    }
    void exportPicture() {
        static const QTemporaryDir folder;
        if (m_dice.isOneIn(3)) {
            m_desk.commands->exportPdf(folder.filePath("a.pdf"));
            return;
        }
        QImage image(200, 150, QImage::Format_ARGB32_Premultiplied);
        QPainter painter(&image);
        m_desk.commands->renderTo(&painter, image.rect());
    }

    // ---- assistive technology ----

    void askAccessible() {
        QAccessible::setActive(m_dice.isOneIn(2));
        QAccessibleInterface* at = QAccessible::queryAccessibleInterface(m_desk.view);
        while (at && at->childCount() > 0 && !m_dice.isOneIn(4)) {
            QAccessibleInterface* const child = at->child(m_dice.pick(at->childCount()));
            if (!child || !child->isValid()) break;
            at = child;
            note(at->text(QAccessible::Name));
        }
        at->rect();
        at->state();
        if (QAccessibleInterface* const parent = at->parent()) parent->indexOfChild(at);
        if (at->object() == m_desk.view) return;
        QAccessibleActionInterface* const actions = at->actionInterface();
        if (!actions || actions->actionNames().isEmpty() || m_dice.isOneIn(2)) return;
        const QStringList names = actions->actionNames();
        note(names.join('/'));
        actions->doAction(names[m_dice.pick(names.size())]);
    }

    MonkeyDesk& m_desk;
    Test::Dice& m_dice;
    Qt::MouseButtons m_held;
    Qt::KeyboardModifiers m_modifiers;
    QPoint m_pointer{100, 100};
    int m_time = 1000;
    QStringList m_story;
};

}  // namespace QB::DiagramLumo
