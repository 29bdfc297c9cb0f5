#pragma once

#include <QPoint>
#include <QWidget>
#include <memory>

#include "model/export.h"
#include "popups/popup_anchor.h"

namespace QB {

/// A frameless popup that holds one content widget next to another widget. It closes with Escape
/// (cancelled), with a click outside (accepted: who opened it checks what it holds), when its
/// parent is hidden (cancelled) or by closePopup(), and destroys itself then. Popups nest: keys go
/// to the innermost. Those for undo and redo that its content leaves trigger the action that has
/// them in the window below, which gets no shortcuts while a popup is open.
///
/// Its parent is the panel, never the anchor, which a refresh may destroy. Code outside holds it by
/// QPointer; panels use QBPanelPopup.
/// Thread: main.
class QB_EXPORT QBInputPopup : public QWidget {
    Q_OBJECT

public:
    explicit QBInputPopup(QWidget* parent = nullptr);
    ~QBInputPopup() override;

    /// Replaces the content, which is destroyed as soon as it is safe. Margins are those of the
    /// style, or none. Buttons in @p content lose autoDefault.
    /// Ownership: the popup takes @p content, which may be null.
    void setContent(QWidget* content, bool withMargins);
    QWidget* content() const;

    /// Shows the popup under @p anchor, or above where there is no room below. It is kept inside
    /// the screen and follows the size of its content. The focus goes to the content, or stays
    /// where it is in it; a text there is selected. With the end of the popup it goes back to what
    /// had it before, or to the parent where that is gone.
    void popup(const QBPopupAnchor& anchor);
    /// The same at a widget, or at the point @p pivot of it.
    void popup(QWidget* nextToWidget, const QPoint* pivot = nullptr);

    /// At least as wide as the anchor; as its widget for one that is a point.
    void setFullWidth(bool isFullWidth);

    /// Whether done() is being emitted, perhaps from a signal of a widget in the popup.
    bool isAnswering() const;

public Q_SLOTS:
    void closePopup(bool accepted);

Q_SIGNALS:
    /// The popup is being shown. Its first paint is done before the next input of the user.
    void onShow();
    /// Once, when the popup is hidden already: a receiver may show windows, or destroy the popup.
    /// Not when the popup is destroyed without being closed.
    void done(bool accepted);

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    class Private;
    const std::unique_ptr<Private> d;
};

}  // namespace QB
