#pragma once

#include <QPointer>
#include <QString>
#include <functional>
#include <memory>

#include "popups/popup_anchor.h"

class QLineEdit;
class QPlainTextEdit;
class QWidget;

namespace QB {

class QBInputPopup;

/// The one popup that a panel may have open, and what every panel does with it. A member of the
/// panel, named last, so that it goes first: nothing of the popup runs in a half destroyed panel.
///
/// isOpen() is true from open() until the popup has its answer, which is given once the popup is
/// hidden; the focus has gone back to where it was before (a list, or the panel) and another popup
/// may be opened. If the panel or this object goes first the popup goes with it and there is no
/// answer; the answer itself may destroy them.
/// Thread: main.
class QBPanelPopup {
public:
    /// @p panel is the parent of the popups; not owned, outlives this object.
    explicit QBPanelPopup(QWidget* panel);
    ~QBPanelPopup();
    QBPanelPopup(const QBPanelPopup&) = delete;
    QBPanelPopup& operator=(const QBPanelPopup&) = delete;

    bool isOpen() const;

    /// Opens a popup with @p content at @p anchor (see QBInputPopup::popup). @p accepted is called
    /// unless the popup is cancelled; @p content still lives then. Nothing while one is open.
    /// Ownership: takes @p content in any case. Null if one is open.
    QBInputPopup* open(QWidget* content, const QBPopupAnchor& anchor,
                       std::function<void()> accepted, bool withMargins = false);

    /// A line of text, at least 200 pixels wide and as wide as @p anchor, selected; Return accepts.
    /// Null if a popup is open.
    QLineEdit* openLine(const QString& text, const QBPopupAnchor& anchor,
                        std::function<void(const QString&)> accepted);
    /// Several lines in a monospaced font, at least 400 by 60, not wrapped; Ctrl+Return accepts,
    /// which a line below the text says. Null if a popup is open.
    QPlainTextEdit* openText(const QString& text, const QBPopupAnchor& anchor,
                             std::function<void(const QString&)> accepted);

    /// Takes what was typed, or says, to the user, why not.
    using Taker = std::function<QString(const QString&)>;
    /// As openLine() and openText(), for a text that may be refused: the user is told (showError),
    /// and goes on from what they typed, unless @p where finds no place any more. A text that was
    /// not changed, but for blanks around it, is no answer.
    void editLine(const QString& text, const QBPopupAnchorFinder& where, const Taker& take);
    void editText(const QString& text, const QBPopupAnchorFinder& where, const Taker& take);

    /// Closes the open popup, if any, as accepted or as cancelled.
    void accept();
    void cancel();

private:
    using Editing = void (QBPanelPopup::*)(const QString&, const QBPopupAnchorFinder&, const Taker&,
                                           bool isAgain);
    void editLine(const QString& text, const QBPopupAnchorFinder& where, const Taker& take,
                  bool isAgain);
    void editText(const QString& text, const QBPopupAnchorFinder& where, const Taker& take,
                  bool isAgain);
    /// What such a text does when it was @p text before.
    std::function<void(const QString&)> taking(const QString& text,
                                               const QBPopupAnchorFinder& where, const Taker& take,
                                               Editing again);

    QWidget* const m_panel;          // not owned: outlives this
    QPointer<QBInputPopup> m_popup;  // null once it has its answer
    const std::shared_ptr<const bool> m_life = std::make_shared<bool>(true);
};

}  // namespace QB
