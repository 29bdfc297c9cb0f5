#include "apps/joinery-desk/builder_text.h"

#include <QEvent>
#include <QTimer>
#include <utility>

#include "engine/engine_linux.h"

namespace QB::Desk {

BuilderText::BuilderText(Extent extent, QWidget* parent)
    : QBAbstractQueryPreviewPanelWidget(parent) {
    setShowsCurrentLayerOnly(extent == Extent::LayerUnderEdit);
    hide();
}

void BuilderText::request() {
    m_isRequested = true;
    // Never from inside the call that ends a generation.
    QTimer::singleShot(0, this, &BuilderText::answer);
}

void BuilderText::answer() {
    if (!m_isRequested || engine() == nullptr) return;
    updatePreviewQuery();
    // It is disabled for as long as it generates, and changeEvent() comes back here.
    if (!isEnabledTo(parentWidget())) return;
    m_isRequested = false;
    if (isStatementEmpty()) m_text.clear();
    Q_EMIT ready();
}

/// The generator writes a "*" for a statement in which nothing was chosen.
bool BuilderText::isStatementEmpty() const {
    const int current = engine()->currentTopLevelQueryComponentLayer();
    const int layer = showsCurrentLayerOnly() ? current : 0;
    const auto* statement = current < 0
                                ? nullptr
                                : dynamic_cast<const Component::SQL::SQLSelectStmtComponent*>(
                                      engine()->topLevelQueryComponent(layer));
    if (statement == nullptr) return true;
    const ELEMSQLLimitExpr* limit = statement->limitExpr;
    return statement->sourceExpr->root == nullptr && statement->selectColumnExpr->columns.empty() &&
           statement->selectColumnExpr->selectOption.empty() &&
           statement->whereExpr->root == nullptr && statement->groupByExpr->columns.empty() &&
           statement->havingExpr->root == nullptr && statement->orderByExpr->columns.empty() &&
           limit->offset == -1 && limit->rowCount == -1;
}

void BuilderText::setPreviewQuery(std::string query) {
    m_text = std::move(query);
}

void BuilderText::highlightText(HighlightType, std::vector<QBRange>) {}

void BuilderText::changeEvent(QEvent* event) {
    QBAbstractQueryPreviewPanelWidget::changeEvent(event);
    if (event->type() == QEvent::EnabledChange) QTimer::singleShot(0, this, &BuilderText::answer);
}

}  // namespace QB::Desk
