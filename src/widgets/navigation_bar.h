#pragma once

#include <QStringList>
#include <QWidget>

class QButtonGroup;
class QHBoxLayout;
class QLabel;
class QMouseEvent;
class QScrollArea;

namespace QB {

/// The path of query layers, from the root to the current one, as a line of buttons. Where the
/// line is too long it scrolls by wheel, by dragging, also over the buttons, and with the keyboard
/// focus. Main thread.
class QBNavigationBar : public QWidget {
    Q_OBJECT

public:
    explicit QBNavigationBar(QWidget* parent = nullptr);

    /// Shows one button for each name; the last one, the current layer, is bold and scrolled into
    /// view. A long name elides, with all of it in the tooltip.
    void setLayerNames(const QStringList& names);

Q_SIGNALS:
    /// The button of the layer was clicked; layers count from 0, the root.
    void layerClicked(int layer);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void localizeControls();
    void removeAllItems();
    void addArrow();
    void addButton(const QString& name, int layer, bool isCurrent);
    void showCurrentLayer();
    void passToScrollBar(QEvent* wheelEvent);
    int positionInBar(const QMouseEvent* event) const;
    void dragTo(const QMouseEvent* event);

    QScrollArea* m_scrollArea;    // not owned: a child
    QHBoxLayout* m_layout;        // not owned: of the scrolled content
    QButtonGroup* m_buttonGroup;  // not owned: a child; ids are layer numbers
    int m_dragPosition = -1;      // x of the mouse in the bar, -1 while no button is down
    bool m_isDragging = false;    // what the mouse does is no click
    bool m_isScrolling = false;
};

}  // namespace QB
