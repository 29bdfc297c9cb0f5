#include "apps/joinery-desk/result_model.h"

#include <QFont>
#include <QGuiApplication>
#include <QPalette>

#include "apps/joinery-desk/cell_text.h"

namespace QB::Desk {
namespace {

constexpr int longestToolTip = 2000;  // characters

bool isNumber(const QVariant& value) {
    switch (value.type()) {
        case QVariant::Int:
        case QVariant::UInt:
        case QVariant::LongLong:
        case QVariant::ULongLong:
        case QVariant::Double:
            return true;
        default:
            return false;
    }
}

/// What stands for a value and is not its text: NULL, a blob.
bool isStandIn(const QVariant& value) {
    return value.isNull() || value.type() == QVariant::ByteArray;
}

QVariant standInFont() {
    QFont font = QGuiApplication::font();
    font.setItalic(true);
    return font;
}

QString toolTipText(const QVariant& value) {
    if (!isShortened(value)) return QString();
    QString text = fullCellText(value);
    if (text.size() > longestToolTip) text = text.left(longestToolTip) + QChar(0x2026);
    // As rich text it is wrapped; what looks like markup in it is not.
    return QStringLiteral("<p style=\"white-space:pre-wrap\">%1</p>").arg(text.toHtmlEscaped());
}

}  // namespace

void ResultModel::reset(const QStringList& columns) {
    beginResetModel();
    m_columns = columns;
    m_rows.clear();
    endResetModel();
}

void ResultModel::append(const QVector<QVariantList>& rows) {
    if (rows.isEmpty()) return;
    beginInsertRows(QModelIndex(), m_rows.size(), m_rows.size() + rows.size() - 1);
    m_rows += rows;
    endInsertRows();
}

int ResultModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : m_rows.size();
}

int ResultModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : m_columns.size();
}

QVariant ResultModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return QVariant();
    const QVariant& value = m_rows[index.row()][index.column()];
    switch (role) {
        case Qt::DisplayRole:
            return shortCellText(value);
        case Qt::ToolTipRole:
            return toolTipText(value);
        case Qt::FontRole:
            return isStandIn(value) ? standInFont() : QVariant();
        case Qt::ForegroundRole:
            return isStandIn(value)
                       ? QVariant(QGuiApplication::palette().brush(QPalette::PlaceholderText))
                       : QVariant();
        case Qt::TextAlignmentRole:
            return int(Qt::AlignVCenter | (isNumber(value) ? Qt::AlignRight : Qt::AlignLeft));
        default:
            return QVariant();
    }
}

QVariant ResultModel::headerData(int section, Qt::Orientation orientation, int role) const {
    const bool isColumn = orientation == Qt::Horizontal;
    if (role == Qt::TextAlignmentRole)
        return int(Qt::AlignVCenter | (isColumn ? Qt::AlignLeft : Qt::AlignRight));
    if (role == Qt::DisplayRole && !isColumn) return section + 1;
    const bool isText = role == Qt::DisplayRole || role == Qt::ToolTipRole;
    return isText && isColumn ? QVariant(m_columns.value(section)) : QVariant();
}

}  // namespace QB::Desk
