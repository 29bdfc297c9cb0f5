#include "canvas/items/database_item_body.h"

#include "canvas/items/item.h"
#include "canvas/items/item_geometry.h"

namespace QB::DiagramLumo {

QBLumoDatabaseItemBody::QBLumoDatabaseItemBody() = default;

void QBLumoDatabaseItemBody::setTableName(const std::string& name) {
    if (name == m_tableName) return;
    m_tableName = name;
    invalidate();
}

void QBLumoDatabaseItemBody::setSchema(const std::string& schema) {
    m_schema = schema;
}

void QBLumoDatabaseItemBody::setLineDash(std::vector<double> dash) {
    m_lineDash = std::move(dash);
    invalidate();
}

TitleText QBLumoDatabaseItemBody::title() const {
    return {m_tableName, getAlias()};
}

const std::vector<double>& QBLumoDatabaseItemBody::borderDash() const {
    return m_lineDash;
}

void QBLumoDatabaseItemBody::fieldsChanged() {
    const int height = fieldNames().empty() ? defaultTableBodySize().height
                                            : tableBodyHeightFor(int(fieldNames().size()) + 1);
    if (QBLumoItem* const owner = item())
        owner->fitBodyHeight(height);
    else
        setRect(LumoRect(getRect().origin, {lumoWidth(getRect()), height}));
}

}  // namespace QB::DiagramLumo
