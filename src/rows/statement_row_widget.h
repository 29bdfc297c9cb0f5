#pragma once

#include "rows/nested_list_row_widget.h"
#include "rows/row_database.h"

namespace QB {

/// A row whose text names parts of the statement: it depends on the server and the schema, and the
/// part can be marked as invalid.
class QBStatementRowWidget : public QBNestedListRowWidget {
    Q_OBJECT

public:
    /// @p schema is the one that names may leave out, see schemaLeftOut(); for a subquery the
    /// current one.
    QBStatementRowWidget(Component::AbstractQueryComponent* component, QBDatabaseInfo info,
                         const std::string& schema, QWidget* parent);

    /// The server and the schema, as for the constructor.
    void setDatabase(QBDatabaseInfo info, const std::string& schema);

    /// Why the row is marked as invalid, one of Tools::Validation::InvalidReason; -1: it is not.
    void setInvalidReason(int reason);
    int invalidReason() const { return m_invalidReason; }

protected:
    const RowDatabase& database() const { return m_database; }

private:
    RowDatabase m_database;
    int m_invalidReason = -1;
};

}  // namespace QB
