#include "widgets/label_accessible.h"

#include <QAccessibleWidget>

#include "widgets/label.h"

namespace QB {
namespace {

class LabelAccessible : public QAccessibleWidget {
public:
    explicit LabelAccessible(QBLabel* label) : QAccessibleWidget(label, QAccessible::StaticText) {}

    QAccessible::Role role() const override {
        return label()->isClickable() ? QAccessible::Button : QAccessible::StaticText;
    }

    QString text(QAccessible::Text kind) const override {
        if (kind == QAccessible::Name) return name();
        if (kind == QAccessible::Description) return description();
        return QAccessibleWidget::text(kind);
    }

    /// Where the mark of the keyboard lies on a label, the list around it has the focus.
    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        if (label()->isClickable()) state.focusable = true;
        if (label()->isCurrentPart()) state.focused = true;
        return state;
    }

    QStringList actionNames() const override {
        QStringList names = QAccessibleWidget::actionNames();
        if (label()->isClickable()) names.prepend(pressAction());
        return names;
    }

    void doAction(const QString& action) override {
        if (action == pressAction()) return label()->click();
        QAccessibleWidget::doAction(action);
    }

private:
    QBLabel* label() const { return static_cast<QBLabel*>(object()); }

    QString name() const {
        const QString given = label()->accessibleName();
        return given.isEmpty() ? label()->fullText() : given;
    }

    QString description() const {
        const QString given = label()->accessibleDescription();
        if (!given.isEmpty()) return given;
        return label()->toolTipText() == name() ? QString() : label()->toolTipText();
    }
};

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
    auto* label = qobject_cast<QBLabel*>(object);
    return label ? new LabelAccessible(label) : nullptr;
}

}  // namespace

void installLabelAccessibility() {
    static const bool isInstalled = [] {
        QAccessible::installFactory(makeInterface);
        return true;
    }();
    Q_UNUSED(isInstalled)
}

}  // namespace QB
