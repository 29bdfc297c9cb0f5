#pragma once

#include <QLabel>
#include <QPixmap>

#include "widgets/label_palette.h"

namespace QB {

/// A text or image that can be clicked. Main thread only.
///
/// Texts are plain, in one line, and elide to the width of the label, in full in the tooltip (see
/// setToolTipText); text() keeps the whole of a text of up to 512 characters, fullText() of any.
/// For screen readers a clickable label is a button.
///
/// Under the mouse a text is underlined and an image fades to 150/255 of its opacity; afterwards
/// the first look comes back. A clickable label with a focus policy can be operated with the space
/// bar and the Enter keys.
class QBLabel : public QLabel {
    Q_OBJECT

public:
    explicit QBLabel(QWidget* parent = nullptr);

    bool isClickable() const { return m_isClickable; }
    void setClickable(bool clickable);

    /// Gives the label the look it has under the mouse, from outside: a row lights up its delete
    /// control while the mouse is anywhere on the row.
    void setHovered(bool hovered);

    /// The text as it was set, however long.
    const QString& fullText() const { return m_fullText; }

    /// What the text is; it is painted in the colour for that, without a style sheet. An invalid
    /// text has a "!" in front.
    void setLabelColour(LabelColour colour);
    LabelColour colour() const { return m_colour; }
    /// The label lies on a selected row: the colour is chosen to be readable there.
    void setSelectedLook(bool isSelected);
    /// The mark of the keyboard lies on the label.
    void setCurrentPart(bool isCurrent);
    /// A plain text, shown escaped and cut to 2,000 characters; empty: the full text where it
    /// elides.
    void setToolTipText(const QString& text);

    /// Emits clicked() as a click would; nothing unless clickable.
    void click();

    /// Shows an image; hides the setter of the base, which knows nothing of the hover look.
    void setPixmap(const QPixmap& pixmap);

public Q_SLOTS:
    void setText(const QString& value);

Q_SIGNALS:
    /// A clickable label was clicked with the left mouse button, or by key.
    void clicked();

protected:
    void enterEvent(QEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void showLook();
    void showUnderline(bool isWanted);

    QString m_fullText;
    LabelColour m_colour = LabelColour::Value;
    bool m_isClickable = false;
    bool m_isUnderMouse = false;
    bool m_isHeldHovered = false;
    bool m_hasHoverUnderline = false;
    QPixmap m_plainPixmap;  // what is shown without hover; null for a text
};

}  // namespace QB
