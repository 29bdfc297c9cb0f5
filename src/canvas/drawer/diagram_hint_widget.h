#pragma once

#include <QWidget>

class QLabel;

namespace QB {

/// Lies over an empty diagram and says how to fill it. Takes no mouse events: clicks and drops go
/// to what is below.
class QBDiagramHintWidget : public QWidget {
    Q_OBJECT

public:
    explicit QBDiagramHintWidget(QWidget* parent = nullptr);
    ~QBDiagramHintWidget() override;

    /// Whether an object that can be dropped hovers over the diagram: a second fill says so.
    void setTakesDrop(bool takesDrop);
    bool takesDrop() const { return m_takesDrop; }

protected:
    void changeEvent(QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void retranslate();
    void applyTheme();
    void paintDropFeedback(QPainter& painter) const;

    QLabel* m_label;  // owned by the widget
    bool m_takesDrop = false;
};

}  // namespace QB
