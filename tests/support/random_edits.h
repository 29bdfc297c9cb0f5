#pragma once

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "engine/engine.h"
#include "layouts/column_vector_layout.h"
#include "layouts/components_list_layout.h"
#include "layouts/condition_list_layout.h"
#include "layouts/source_tree_layout.h"
#include "model/tree_walks.h"
#include "support/dice.h"
#include "tools/identifier_tools.h"

namespace QB::Test {

using namespace Component::SQL;
using namespace QBComponentsListLayout_Private;

/// What a user does to a query by rows, without validation in between.
class RandomEdits {
public:
    /// @p settle lets everything arrive that is under way.
    RandomEdits(Dice& dice, QBEngine* engine, std::function<void()> settle)
        : m_dice(dice), m_engine(engine), m_settle(std::move(settle)) {}

    void step() { m_dice.isOneIn(12) ? switchLayer() : editClause(); }

    /// Of the current layer.
    void editClause() {
        const int kind = m_dice.pick(12);
        if (kind < 2) return addTable();
        if (kind < 6) return editSources();
        if (kind < 9)
            return editColumns(
                m_dice.pickFrom(std::vector{ElementSelectColumn, ElementGroupBy, ElementOrderBy}));
        editConditions(kind == 11 ? ElementHaving : ElementWhere);
    }

    void parse() {
        static const std::vector<std::string> texts = {
            "SELECT a.x, b.y AS w, COUNT(*) FROM a, b WHERE a.x = b.x GROUP BY a.x, w ORDER BY w "
            "DESC",
            "SELECT DISTINCT p.* FROM a p INNER JOIN (b q LEFT JOIN c ON q.x = c.x) ON p.x = q.x, "
            "d",
            "SELECT * FROM a INNER JOIN b INNER JOIN c ON b.x = c.x ON a.x = b.x, d CROSS JOIN e",
            "SELECT u.x FROM (SELECT x, MAX(y) AS m FROM a GROUP BY x) u, b WHERE NOT (u.x > 1 OR "
            "b.y IN "
            "(1, 2)) AND b.x BETWEEN 1 AND 2 HAVING b.y IS NULL",
            "SELECT x FROM s.a, t.b INNER JOIN s.c USING (x) WHERE x LIKE 'a%' OR NOT y = 1 AND 1 "
            "< z",
            "",
            "SELECT a FROM (",
            "SELECT f(x) OVER w, {fn now()} FROM TABLE(g) t"};
        m_engine->parseQuery(m_dice.pickFrom(texts), nullptr);
        m_settle();
    }

private:
    using Layout = QBComponentsListLayout;

    SQLSelectStmtComponent* statement() const {
        return dynamic_cast<SQLSelectStmtComponent*>(m_engine->currentTopLevelQueryComponent());
    }

    std::unique_ptr<SQLIdentifierSourceComponent> makeTable() {
        auto table = std::make_unique<SQLIdentifierSourceComponent>();
        table->name = "t" + std::to_string(++m_names);
        table->path = {m_dice.isOneIn(8) ? "other" : "s"};
        if (m_dice.isOneIn(3)) table->alias = "Alias " + std::to_string(m_names);
        return table;
    }

    std::vector<SQLAbstractSourceComponent*> sources() const {
        std::vector<SQLAbstractSourceComponent*> sources;
        Tools::visitSourceNodes(statement()->sourceExpr->root, [&](const SourceNode* node) {
            if (!node->left && !node->right) sources.push_back(node->value);
        });
        return sources;
    }

    /// As a tick in the diagram makes it, or free text.
    SQLAbstractColumnComponent* makeColumn() {
        const auto known = sources();
        if (known.empty() || m_dice.isOneIn(5)) {
            auto* text = new SQLAnyExpressionColumnComponent;
            text->expression =
                m_dice.pickFrom(std::vector<std::string>{"1", "count( * )", "x+1", "a.x"});
            return text;
        }
        auto* field = new SQLFieldColumnComponent;
        field->source = m_dice.pickFrom(known);
        if (const auto* table = dynamic_cast<SQLIdentifierSourceComponent*>(field->source)) {
            field->parentPath = table->path;
            field->parentPath.push_back(table->name);
        }
        field->fieldName = m_dice.pickFrom(std::vector<std::string>{"x", "y", "Some Field"});
        return field;
    }

    SQLAbstractConditionComponent* makeCondition() {
        if (m_dice.isOneIn(4)) return new SQLBracketedConditionComponent;
        const auto value = [this] {
            auto* operand = new SQLConditionValueComponent;
            operand->values = {makeColumn()};
            return operand;
        };
        auto* compare = new SQLCompareConditionComponent;
        compare->leftValue = value();
        compare->rightValue = value();
        compare->compareOp =
            m_dice.pickFrom(std::vector{CompareOpEqual, CompareOpLess, CompareOpIsNull});
        compare->logicGate = m_dice.isOneIn(2) ? SQLLogicGateAnd : SQLLogicGateOr;
        compare->negated = m_dice.isOneIn(4);
        return compare;
    }

    void addTable() {
        Tools::Identifier::addSourceComponentToExpression(m_engine, nullptr, makeTable());
    }

    void switchLayer() {
        if (m_engine->currentTopLevelQueryComponentLayer() > 0)
            return m_engine->popCurrentLayerTopLevelQueryComponent();
        for (SQLAbstractSourceComponent* source : sources()) {
            if (const auto* derived = dynamic_cast<SQLSubquerySourceComponent*>(source))
                return m_engine->pushNewLayerTopLevelQueryComponent(derived->subquery, "sub");
        }
        if (m_dice.isOneIn(3)) parse();
    }

    template <typename Impl, typename Root>
    void editRows(TopLevelQueryComponentElementEnum element, Root root,
                  const std::function<Component::AbstractQueryComponent*()>& make) {
        auto impl = std::make_unique<Impl>(root);
        impl->rebuildItems();
        impl->updateItemFlags();
        Layout layout(std::move(impl));
        const int count = static_cast<int>(layout.items().size());
        const int first = m_dice.pick(count);
        const int last = std::min(count - 1, first + m_dice.pick(4));
        const Layout::Items rows(layout.items().begin() + first, layout.items().begin() + last + 1);
        const int kind = m_dice.pick(6);
        if (kind == 0) layout.addItem(m_engine, element, nullptr, make(), first);
        if (kind == 1) layout.insertItem(m_engine, element, nullptr, make(), first);
        if (kind == 2) layout.removeItems(m_engine, element, nullptr, {rows.front()});
        if (kind == 3) layout.groupItemsByBracket(m_engine, element, nullptr, rows, -1);
        if (kind == 4) layout.ungroupItemsByBracket(m_engine, element, nullptr, {rows.front()});
        if (kind == 5)
            layout.moveItem(m_engine, element, nullptr, rows.front(),
                            static_cast<unsigned long>(m_dice.pick(count + 1)));
    }

    void editSources() {
        editRows<SourceTreeLayout>(ElementSource, &statement()->sourceExpr->root,
                                   [this] { return makeTable().release(); });
    }

    void editColumns(TopLevelQueryComponentElementEnum element) {
        const auto make = [this, element] {
            auto* column = makeColumn();
            if (element == ElementSelectColumn) return column;
            column->extraData = new SQLAbstractColumnComponent::ExtraDataOrderDirection;
            return column;
        };
        auto* columns = element == ElementSelectColumn ? &statement()->selectColumnExpr->columns
                        : element == ElementGroupBy    ? &statement()->groupByExpr->columns
                                                       : &statement()->orderByExpr->columns;
        editRows<ColumnVectorLayout>(element, columns, make);
    }

    void editConditions(TopLevelQueryComponentElementEnum element) {
        auto* chain = element == ElementWhere ? statement()->whereExpr : statement()->havingExpr;
        editRows<ConditionListLayout>(element, &chain->root, [this] { return makeCondition(); });
    }

    Dice& m_dice;
    QBEngine* const m_engine;  // not owned
    const std::function<void()> m_settle;
    int m_names = 0;
};

}  // namespace QB::Test
