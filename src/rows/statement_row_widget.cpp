#include "rows/statement_row_widget.h"

namespace QB {

QBStatementRowWidget::QBStatementRowWidget(Component::AbstractQueryComponent* component,
                                           QBDatabaseInfo info, const std::string& schema,
                                           QWidget* parent)
    : QBNestedListRowWidget(component, parent), m_database{info, schema} {}

void QBStatementRowWidget::setDatabase(QBDatabaseInfo info, const std::string& schema) {
    const RowDatabase database{info, schema};
    if (database == m_database) return;
    m_database = database;
    slotOnComponentChanged();
}

void QBStatementRowWidget::setInvalidReason(int reason) {
    if (m_invalidReason == reason) return;
    m_invalidReason = reason;
    slotOnComponentChanged();
}

}  // namespace QB
