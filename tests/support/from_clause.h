#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "engine/engine.h"
#include "model/components.h"
#include "model/detached_parts.h"
#include "model/tree_walks.h"
#include "tools/identifier_tools.h"

namespace QB::Test {

/// Adds a table to the current FROM clause, after a comma.
inline Component::SQL::SQLIdentifierSourceComponent* addTable(QBEngine* engine,
                                                              std::vector<std::string> path,
                                                              const std::string& name,
                                                              const std::string& alias = {}) {
    auto source = std::make_unique<Component::SQL::SQLIdentifierSourceComponent>();
    source->path = std::move(path);
    source->name = name;
    source->alias = alias;
    auto* const added = source.get();
    Tools::Identifier::addSourceComponentToExpression(engine, nullptr, std::move(source));
    return added;
}

/// Takes everything out of the current FROM clause.
inline void emptyFromClause(QBEngine* engine) {
    const auto empty = [engine](ELEMSQLSourceExpr* element) {
        DetachedParts parts;
        parts.add(
            std::unique_ptr<Component::SQL::SourceNode>(std::exchange(element->root, nullptr)));
        engine->retire(std::move(parts));
        return true;
    };
    engine->modifyInTopLevelQueryComponentElement<ELEMSQLSourceExpr*>(
        ElementSource, engine->currentTopLevelQueryComponentLayer(), empty, nullptr);
}

/// The alias of a named source, or else its name.
inline std::string shownName(const Component::SQL::SQLAbstractSourceComponent* source) {
    if (!source) return "?";
    if (!source->alias.empty()) return source->alias;
    const auto* named = dynamic_cast<const Component::SQL::SQLIdentifierSourceComponent*>(source);
    return named ? named->name : "?";
}

/// "film.language_id = language.language_id"; "?" for other conditions than between two fields.
inline std::string comparisonText(const Component::SQL::SQLAbstractConditionComponent* condition) {
    using namespace Component::SQL;
    const auto field = [](const SQLAbstractConditionComponent* operand) -> std::string {
        const auto* value = dynamic_cast<const SQLConditionValueComponent*>(operand);
        const auto* column =
            value ? dynamic_cast<const SQLFieldColumnComponent*>(value->firstValue()) : nullptr;
        return column ? shownName(column->source) + "." + column->fieldName : "?";
    };
    const auto* compare = dynamic_cast<const SQLCompareConditionComponent*>(condition);
    return compare ? field(compare->leftValue) + " = " + field(compare->rightValue) : "?";
}

/// What the joins of a tree compare, in text order; a join without condition gives an empty list.
inline std::vector<std::vector<std::string>> joinTexts(const Component::SQL::SourceNode* tree) {
    using namespace Component::SQL;
    std::vector<std::vector<std::string>> joins;
    Tools::visitSourceNodes(tree, [&joins](const SourceNode* node) {
        const auto* join = dynamic_cast<const SQLJoinSourceNodeComponent*>(node->value);
        if (!join) return;
        auto& comparisons = joins.emplace_back();
        for (const auto* link = join->condition; link; link = link->next)
            comparisons.push_back(comparisonText(link));
    });
    return joins;
}

}  // namespace QB::Test
