#pragma once

#include <QMetaObject>
#include <QPoint>
#include <QPointer>
#include <QWidget>
#include <memory>

#include "model/export.h"

namespace Ui {
class QBInputPopup;
}

namespace QB {

/// A frameless popup that holds one content widget next to another widget. It closes with Escape
/// (cancelled), with a click outside (accepted: who opened it checks what it holds) or by
/// closePopup(), and destroys itself then.
///
/// Its parent is the panel, never the anchor, which a refresh may destroy. Code outside holds it by
/// QPointer; panels use QBPanelPopup.
/// Thread: main.
class QB_EXPORT QBInputPopup : public QWidget {
    Q_OBJECT

public:
    explicit QBInputPopup(QWidget* parent = nullptr);
    ~QBInputPopup() override;

    /// Replaces the content, which is destroyed. Margins are those of the style, or none.
    /// Ownership: the popup takes @p content.
    void setContent(QWidget* content, bool withMargins);
    QWidget* content() const;

    /// Shows the popup under @p nextToWidget, or above where there is no room below; with @p pivot
    /// at that point of it. Kept inside the screen, also when its size changes later. The focus
    /// goes to the content, a text in it is selected.
    void popup(QWidget* nextToWidget, const QPoint* pivot = nullptr);

    /// Not shorter than the anchor is wide.
    void setFullWidth(bool isFullWidth);

public Q_SLOTS:
    void closePopup(bool accepted);

Q_SIGNALS:
    /// The popup has been painted and takes keys.
    void onShow();
    /// Once, when the popup is hidden already: a receiver may show windows. Not when the popup is
    /// destroyed without being closed.
    void done(bool accepted);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    class Private;
    const std::unique_ptr<Private> d;
};

}  // namespace QB
