#pragma once

#include <QLabel>
#include <QPixmap>

#include "widgets/label_palette.h"

namespace QB {

/// A text or image that can be clicked. Main thread only.
///
/// A text label with an expanding size policy asks for little, so that those beside it keep their
/// whole text.
///
/// Texts are plain, in one line, and elide to the width of the label, in full in the tooltip (see
/// setToolTipText); text() keeps the whole of a text of up to 512 characters, line breaks as
/// blanks, fullText() of any. For screen readers a clickable label is a button.
///
/// Under the mouse a text is underlined and an image fades to 150/255 of its opacity; afterwards
/// the first look comes back. A clickable label with a focus policy can be operated with the space
/// bar and the Enter keys.
///
/// Presses and releases go on to the widget around it, so that a list selects the row and ends what
/// the press began there; the label only tells of the click. A release outside is no click.
class QBLabel : public QLabel {
    Q_OBJECT

public:
    explicit QBLabel(QWidget* parent = nullptr);

    bool isClickable() const { return m_isClickable; }
    void setClickable(bool clickable);
    /// What is shown belongs to something else now: a press that is held is no click on it.
    void forgetPress() { m_isPressed = false; }

    /// Gives the label the look it has under the mouse, from outside: a row lights up its delete
    /// control while the mouse is anywhere on the row.
    void setHovered(bool hovered);

    /// The text as it was set, however long.
    const QString& fullText() const { return m_fullText; }

    /// What the text is; it is painted in the colour for that, without a style sheet. An invalid
    /// text has a "!" in front.
    void setLabelColour(LabelColour colour);
    LabelColour colour() const { return m_colour; }
    /// The label lies on a selected row, filled with selectedRowColour() of the palette: the colour
    /// is chosen to be readable there.
    void setSelectedLook(bool isSelected);
    /// The mark of the keyboard lies on the label.
    void setCurrentPart(bool isCurrent);
    bool isCurrentPart() const { return m_isCurrentPart; }
    /// A plain text, shown escaped and cut to 2,000 characters; empty: the full text where it
    /// elides. What is not the text itself is read to the blind as the description.
    void setToolTipText(const QString& text);
    /// The text as it was set; toolTip() is what it was made into.
    const QString& toolTipText() const { return m_toolTipText; }

    /// Emits clicked() as a click would; nothing unless clickable.
    void click();

    /// Shows an image; hides the setter of the base, which knows nothing of the hover look.
    void setPixmap(const QPixmap& pixmap);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

public Q_SLOTS:
    void setText(const QString& value);

Q_SIGNALS:
    /// A clickable label was clicked with the left mouse button, or by key.
    void clicked();

protected:
    bool event(QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void enterEvent(QEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void showLook();
    void showUnderline(bool isWanted);
    /// What is painted, before it is elided.
    QString shownText() const;
    /// In logical pixels.
    int textWidth() const;
    QRect textRect() const;
    void forgetTextWidth();
    void paintText(QPainter& painter);
    void paintFocusFrame(QPainter& painter);
    QColor textColour() const;

    QString m_fullText;
    QString m_toolTipText;
    LabelColour m_colour = LabelColour::Value;
    bool m_isClickable = false;
    bool m_isPressed = false;
    bool m_isUnderMouse = false;
    bool m_isHeldHovered = false;
    bool m_hasHoverUnderline = false;
    bool m_isOnSelection = false;
    bool m_isCurrentPart = false;
    QPixmap m_plainPixmap;         // what is shown without hover; null for a text
    mutable int m_textWidth = -1;  // -1: to be measured
    QString m_elided;              // shownText() as it fits into m_elidedWidth
    int m_elidedWidth = -1;        // -1: to be elided anew
    int m_elidedAdvance = 0;       // of m_elided, in pixels
};

}  // namespace QB
