#pragma once

#include <QAbstractTableModel>
#include <QStringList>
#include <QVariant>
#include <QVector>

namespace QB::Desk {

/// The rows of a result, which grows at its end while a query runs. Main thread.
class ResultModel : public QAbstractTableModel {
    Q_OBJECT

public:
    using QAbstractTableModel::QAbstractTableModel;

    /// Starts anew with these columns and no rows.
    void reset(const QStringList& columns);
    /// @p rows have a value for each column.
    void append(const QVector<QVariantList>& rows);

    /// What the server sent: null QVariant for NULL, QByteArray for a blob.
    const QVariant& value(int row, int column) const { return m_rows[row][column]; }
    const QString& columnName(int column) const { return m_columns[column]; }

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    QStringList m_columns;
    QVector<QVariantList> m_rows;
};

}  // namespace QB::Desk
