#include "widgets/overlap_layout.h"

namespace QB {
namespace {

qint64 area(const QSize& size) {
    return qint64(size.width()) * size.height();
}

}  // namespace

QBOverlapLayout::QBOverlapLayout(QWidget* parent) : QLayout(parent) {
    setContentsMargins(0, 0, 0, 0);  // the style would leave a border
}

QBOverlapLayout::~QBOverlapLayout() {
    qDeleteAll(m_items);
}

void QBOverlapLayout::addItem(QLayoutItem* item) {
    m_items.append(item);
}

int QBOverlapLayout::count() const {
    return m_items.count();
}

QLayoutItem* QBOverlapLayout::itemAt(int index) const {
    return m_items.value(index, nullptr);
}

QLayoutItem* QBOverlapLayout::takeAt(int index) {
    return itemAt(index) == nullptr ? nullptr : m_items.takeAt(index);
}

void QBOverlapLayout::setGeometry(const QRect& rect) {
    QLayout::setGeometry(rect);
    for (QLayoutItem* item : qAsConst(m_items))
        item->setGeometry(contentsRect());
}

QSize QBOverlapLayout::sizeHint() const {
    QSize largest;
    for (const QLayoutItem* item : m_items) {
        const QSize hint = item->sizeHint();
        if (!largest.isValid() || area(hint) > area(largest)) largest = hint;
    }
    return largest;
}

}  // namespace QB
