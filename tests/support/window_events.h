#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QListWidget>
#include <QMenu>
#include <QTabBar>
#include <QTreeWidget>
#include <QWindow>
#include <QtTest>

namespace QB::Test {

/// What a user does, as events of whole windows: a popup sees them as it does on a screen. False
/// where there is nothing to do it to.
struct WindowEvents {
    static QWindow* activeWindow(QWidget* fallback) {
        QWidget* const popup = QApplication::activePopupWidget();
        return (popup ? popup : fallback)->window()->windowHandle();
    }

    static bool pressIn(QWidget* window, const QString& keys) {
        sendKey(QTest::Press, window, keys);
        return true;
    }
    /// The press may have closed the window that got it.
    static void releaseIn(QWidget* window, const QString& keys) {
        sendKey(QTest::Release, window, keys);
    }
    static void sendKey(QTest::KeyAction action, QWidget* window, const QString& keys) {
        const int code = QKeySequence(keys)[0];
        const auto modifiers = Qt::KeyboardModifiers(code & int(Qt::KeyboardModifierMask));
        const auto key = Qt::Key(code & ~int(Qt::KeyboardModifierMask));
        QTest::sendKeyEvent(action, activeWindow(window), key, QString(), modifiers);
    }

    static bool typeInto(QWidget* window, const QString& text) {
        for (const QChar letter : text)
            QTest::keyClick(activeWindow(window), letter.toLatin1());
        return true;
    }

    static bool clickAt(QWidget* widget, const QPoint& point,
                        Qt::MouseButton mouseButton = Qt::LeftButton,
                        Qt::KeyboardModifiers modifiers = {}) {
        QWidget* const top = widget->window();
        const QPoint place = widget->mapTo(top, point);
        QTest::mouseMove(top->windowHandle(), place);
        QTest::mouseClick(top->windowHandle(), mouseButton, modifiers, place);
        return true;
    }

    static bool clickOn(QWidget* widget) {
        return widget && widget->isVisible() && clickAt(widget, widget->rect().center());
    }

    static QTreeWidgetItem* choice(QTreeWidget* tree, const QString& path) {
        QTreeWidgetItemIterator item(tree);
        for (; *item; ++item) {
            const QString text = (*item)->text(0);
            const QTreeWidgetItem* const parent = (*item)->parent();
            if (text == path || text == path + " (*)") return *item;
            if (parent && parent->text(0) + "." + text == path) return *item;
        }
        return nullptr;
    }

    /// Clicks an item of the chooser: "t.a".
    static bool pick(const QString& path) {
        QWidget* const popup = QApplication::activePopupWidget();
        auto* const tree = popup ? popup->findChild<QTreeWidget*>() : nullptr;
        QTreeWidgetItem* const item = tree ? choice(tree, path) : nullptr;
        if (!item) return false;
        tree->scrollToItem(item);
        return clickAt(tree->viewport(), tree->visualItemRect(item).center());
    }

    static bool clickTab(int index) {
        QWidget* const popup = QApplication::activePopupWidget();
        auto* const bar = popup ? popup->findChild<QTabBar*>() : nullptr;
        return bar && clickAt(bar, bar->tabRect(index).center());
    }

    /// Clicks a kind (SQLJoinType) in the list of kinds of join.
    static bool chooseJoin(int type) {
        QWidget* const popup = QApplication::activePopupWidget();
        auto* const list = popup ? popup->findChild<QListWidget*>() : nullptr;
        for (int i = 0; list && i < list->count(); ++i) {
            QListWidgetItem* const item = list->item(i);
            if (item->data(Qt::UserRole + 1) != type) continue;
            list->scrollToItem(item);
            return clickAt(list->viewport(), list->visualItemRect(item).topLeft() + QPoint(9, 9));
        }
        return false;
    }

    /// Clicks an entry of the open menu. An entry that cannot be chosen closes it.
    static bool choose(const QString& text) {
        auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        if (!menu) return false;
        const auto entries = menu->actions();
        for (QAction* entry : entries) {
            if (entry->text() == text && entry->isEnabled())
                return clickAt(menu, menu->actionGeometry(entry).center());
        }
        menu->close();
        return false;
    }
};

}  // namespace QB::Test
