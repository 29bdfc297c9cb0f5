#pragma once

#include <QLabel>
#include <QPixmap>

namespace QB {

/// A text or image that can be clicked. Main thread only.
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

    bool m_isClickable = false;
    bool m_isUnderMouse = false;
    bool m_isHeldHovered = false;
    bool m_hasHoverUnderline = false;
    QPixmap m_plainPixmap;  // what is shown without hover; null for a text
};

}  // namespace QB
