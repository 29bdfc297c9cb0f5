#pragma once

#include <QLayout>
#include <QList>

namespace QB {

/// Stacks its items on top of each other: each takes the whole rectangle of the layout. Which one
/// lies above is the stacking order of the widgets.
class QBOverlapLayout : public QLayout {
    Q_OBJECT

public:
    explicit QBOverlapLayout(QWidget* parent = nullptr);
    ~QBOverlapLayout() override;

    /// Ownership: the layout takes the item.
    void addItem(QLayoutItem* item) override;
    int count() const override;

    /// Null for an index below zero, at the end or beyond it.
    QLayoutItem* itemAt(int index) const override;

    /// As itemAt(); the caller owns the item.
    QLayoutItem* takeAt(int index) override;

    void setGeometry(const QRect& rect) override;

    /// The hint of the item with the largest area, the first such item on a tie; the invalid size
    /// for an empty layout.
    QSize sizeHint() const override;

private:
    QList<QLayoutItem*> m_items;  // owned
};

}  // namespace QB
