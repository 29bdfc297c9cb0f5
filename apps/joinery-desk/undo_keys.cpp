#include "apps/joinery-desk/undo_keys.h"

#include <QAbstractSpinBox>
#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <optional>

namespace QB::Desk {
namespace {

struct Typing {
    bool canUndo = false;
    bool canRedo = false;
};

/// None: @p receiver is no field, and what it does with keys is its own affair.
std::optional<Typing> typingIn(const QObject* receiver) {
    const auto* line = qobject_cast<const QLineEdit*>(receiver);
    if (qobject_cast<const QAbstractSpinBox*>(receiver)) line = receiver->findChild<QLineEdit*>();
    if (line != nullptr) return Typing{line->isUndoAvailable(), line->isRedoAvailable()};
    const auto* edit = qobject_cast<const QPlainTextEdit*>(receiver);
    if (edit == nullptr || edit->isReadOnly()) return std::nullopt;
    return Typing{edit->document()->isUndoAvailable(), edit->document()->isRedoAvailable()};
}

}  // namespace

UndoKeys::UndoKeys(QObject* parent) : QObject(parent) {
    qApp->installEventFilter(this);
}

/// A field that gets this event would claim the key; one that does not leaves it a shortcut.
bool UndoKeys::eventFilter(QObject* receiver, QEvent* event) {
    if (event->type() != QEvent::ShortcutOverride) return false;
    const auto* key = static_cast<QKeyEvent*>(event);
    const bool isUndo = key->matches(QKeySequence::Undo);
    if (!isUndo && !key->matches(QKeySequence::Redo)) return false;
    const std::optional<Typing> typing = typingIn(receiver);
    return typing && !(isUndo ? typing->canUndo : typing->canRedo);
}

}  // namespace QB::Desk
