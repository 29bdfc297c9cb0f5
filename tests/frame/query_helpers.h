#pragma once

#include <string>

#include "engine/engine.h"
#include "stringifier/statement_builder.h"

namespace QB::Test {

/// Makes @p source the only one of the layer's statement, through a modification.
inline void setSource(QBEngine& engine, SourceNode* source, int layer = 0) {
    engine.modifyInTopLevelQueryComponentElement<ELEMSQLSourceExpr*>(
        ElementSource, layer,
        [source](ELEMSQLSourceExpr* from) {
            delete from->root;
            from->root = source;
            return true;
        },
        nullptr);
}

/// Adds a column to the layer's SELECT list, through a modification.
inline void addColumn(QBEngine& engine, SQLAbstractColumnComponent* column, int layer = 0) {
    engine.modifyInTopLevelQueryComponentElement<ELEMSQLSelectColumnExpr*>(
        ElementSelectColumn, layer,
        [column](ELEMSQLSelectColumnExpr* select) {
            select->columns.push_back(column);
            return true;
        },
        nullptr);
}

/// Opens the statement of a subquery source as the next layer.
inline void openLayer(QBEngine& engine, const SourceNode* subquerySource, const std::string& name) {
    const auto* source = static_cast<const SQLSubquerySourceComponent*>(subquerySource->value);
    engine.pushNewLayerTopLevelQueryComponent(source->subquery, name);
}

}  // namespace QB::Test
