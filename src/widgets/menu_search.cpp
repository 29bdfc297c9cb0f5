#include "widgets/menu_search.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QMenu>
#include <algorithm>

namespace QB {
namespace {

/// Belongs to the menu.
class MenuSearch : public QObject {
public:
    explicit MenuSearch(QMenu* menu) : QObject(menu), m_menu(menu) {
        menu->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() != QEvent::KeyPress) return false;
        const QString text = static_cast<QKeyEvent*>(event)->text();
        if (text.isEmpty() || !text.at(0).isPrint()) return false;
        // The word whose first letters have opened this menu goes on.
        MenuSearch* const outer = isTyping() ? nullptr : outerSearch();
        return (outer && outer->goesOnWith(text) ? outer : this)->type(text);
    }

private:
    /// That of the menu that this one belongs to; null if there is none.
    MenuSearch* outerSearch() const {
        const auto* const outer = qobject_cast<QMenu*>(m_menu->parent());
        if (!outer) return nullptr;
        for (QObject* child : outer->children())
            if (auto* const search = dynamic_cast<MenuSearch*>(child)) return search;
        return nullptr;
    }

    bool goesOnWith(const QString& text) const {
        if (!isTyping()) return false;
        const QList<QAction*> entries = m_menu->actions();
        return std::any_of(entries.begin(), entries.end(), [&](const QAction* entry) {
            return entry->text().startsWith(m_typed + text, Qt::CaseInsensitive);
        });
    }

    bool isTyping() const {
        return m_sinceKey.isValid() &&
               m_sinceKey.elapsed() <= QApplication::keyboardInputInterval();
    }

    /// False where the key is none of the search's: a blank chooses an entry.
    bool type(const QString& text) {
        const bool isNew = !isTyping();
        if (isNew && text == QLatin1String(" ")) return false;
        m_typed = isNew ? text : m_typed + text;
        m_sinceKey.start();
        if (QAction* const entry = find()) m_menu->setActiveAction(entry);
        return true;
    }

    QAction* find() const {
        const QList<QAction*> entries = m_menu->actions();
        // A letter by itself goes on to the next entry, further ones stay where they still fit.
        const int start = entries.indexOf(m_menu->activeAction()) + (m_typed.size() > 1 ? 0 : 1);
        QAction* beginning = nullptr;
        for (int i = 0; i < entries.size(); ++i) {
            QAction* const entry = entries[(qMax(start, 0) + i) % entries.size()];
            if (!entry->isEnabled() || !entry->text().startsWith(m_typed, Qt::CaseInsensitive))
                continue;
            if (entry->text().size() == m_typed.size()) return entry;
            if (!beginning) beginning = entry;
        }
        return beginning;
    }

    QMenu* const m_menu;
    QString m_typed;
    QElapsedTimer m_sinceKey;
};

}  // namespace

void letTypingFindEntries(QMenu* menu) {
    new MenuSearch(menu);
    for (QMenu* inner : menu->findChildren<QMenu*>())
        new MenuSearch(inner);
}

}  // namespace QB
