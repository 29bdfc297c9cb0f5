// FROM: tables, joins, brackets and subqueries.

#include <cstring>
#include <utility>

#include "model/detached_parts.h"
#include "parser/converter_texts.h"
#include "parser/dedent.h"
#include "parser/parser_handle.h"
#include "parser/statement_converter.h"

namespace QB {

using namespace Component::SQL;

namespace {

template <typename Component>
std::unique_ptr<SourceNode> nodeOf(std::unique_ptr<Component> source) {
    auto node = std::make_unique<SourceNode>();
    node->value = source.release();
    return node;
}

/// Fills a side that could not be read.
std::unique_ptr<SourceNode> placeholder() {
    return nodeOf(std::make_unique<SQLIdentifierSourceComponent>());
}

std::unique_ptr<SourceNode> freeText(const std::string& text) {
    auto source = std::make_unique<SQLAnyExpressionSourceComponent>();
    source->expression = text;
    return nodeOf(std::move(source));
}

struct JoinWords {
    const char* text;
    SQLJoinType type;
};

constexpr JoinWords joinWords[] = {
    {"INNER JOIN", SQLJoinTypeInner},         {"LEFT JOIN", SQLJoinTypeLeft},
    {"LEFT OUTER JOIN", SQLJoinTypeLeft},     {"RIGHT JOIN", SQLJoinTypeRight},
    {"RIGHT OUTER JOIN", SQLJoinTypeRight},   {"CROSS JOIN", SQLJoinTypeCross},
    {"FULL JOIN", SQLJoinTypeFullOuter},      {"OUTER JOIN", SQLJoinTypeFullOuter},
    {"FULL OUTER JOIN", SQLJoinTypeFullOuter}};

bool beginsWithNatural(const char* text) {
    static constexpr std::string_view natural = "NATURAL ";
    for (std::size_t i = 0; i < natural.size(); ++i) {
        if (upperCase(text[i]) != natural[i]) return false;
    }
    return true;
}

SQLJoinType joinTypeOf(const char* text) {
    if (std::strcmp(text, ",") == 0) return SQLJoinTypeComma;
    if (beginsWithNatural(text)) text += std::strlen("NATURAL ");
    for (const JoinWords& words : joinWords) {
        if (isWord(text, words.text)) return words.type;
    }
    return SQLJoinTypeCustom;
}

bool isBracketed(const std::string& text) {
    return text.size() >= 3 && text.front() == '(' && text.back() == ')';
}

}  // namespace

/// What is left to do with a table once its left side is converted.
struct StatementConverter::JoinStep {
    SqletTable* table;
    unsigned depth;
    bool isBracket;    ///< else a join
    bool isOutermost;  ///< of the brackets around one table
};

StatementConverter::NodePtr StatementConverter::convertTable(SqletTable* table, unsigned depth) {
    // Down the left side to the first source, and back.
    std::vector<JoinStep> steps;
    NodePtr node = convertUnbracketed(table, depth, steps);
    for (; !steps.empty(); steps.pop_back())
        node = finishStep(steps.back(), std::move(node));
    return node;
}

StatementConverter::NodePtr StatementConverter::convertUnbracketed(SqletTable* table,
                                                                   unsigned depth,
                                                                   std::vector<JoinStep>& steps) {
    while (table) {
        const unsigned brackets = sqlet_select_tab_inside_number_of_parens(table);
        if (depth > brackets) return nullptr;
        for (bool isOutermost = true; depth < brackets; ++depth, isOutermost = false)
            steps.push_back({table, depth, true, isOutermost});
        SqletTable* const left = sqlet_select_tab_left(table);
        if (!left) break;
        steps.push_back({table, depth, false, false});
        table = left;
    }
    if (!table) return nullptr;
    NodePtr leaf = convertLeaf(table);
    if (leaf) noteAlias(table, leaf->value);
    return leaf;
}

StatementConverter::NodePtr StatementConverter::finishStep(const JoinStep& step, NodePtr left) {
    NodePtr node;
    if (step.isBracket) {
        node = nodeOf(std::make_unique<SQLBracketedSourceNodeComponent>());
        node->left = left.release();
    } else if (sqlet_select_tab_join_op(step.table)) {
        node = convertJoin(step.table, step.depth, std::move(left));
    } else {
        node = left ? std::move(left) : freeText(textOf(sqlet_select_tab_complex(step.table)));
    }
    // The alias stands behind the last bracket, and is written there alone.
    if (!step.isBracket || step.isOutermost) noteAlias(step.table, node->value);
    return node;
}

StatementConverter::NodePtr StatementConverter::convertJoin(SqletTable* table, unsigned depth,
                                                            NodePtr left) {
    auto join = std::make_unique<SQLJoinSourceNodeComponent>();
    join->joinText = textOf(sqlet_select_tab_join_op(table));
    join->joinType = joinTypeOf(join->joinText.c_str());
    NodePtr right = convertTable(sqlet_select_tab_right(table), depth);
    SqletExpr* const on = sqlet_select_tab_on_expr(table);
    join->isUsing = sqlet_expr_is_using(on) != 0;
    join->condition = convertJoinCondition(on).release();
    NodePtr node = nodeOf(std::move(join));
    node->left = (left ? std::move(left) : placeholder()).release();
    node->right = (right ? std::move(right) : placeholder()).release();
    return node;
}

StatementConverter::ConditionPtr StatementConverter::convertJoinCondition(SqletExpr* on) {
    if (!sqlet_expr_is_using(on)) return convertCondition(on, 0, nullptr);
    auto columns = std::make_unique<SQLAnyExpressionColumnComponent>();
    const int count = sqlet_expr_number_of_using_items(on);
    for (int i = 0; i < count; ++i) {
        if (i > 0) columns->expression += ", ";
        columns->expression += textOf(sqlet_expr_using_item_at(on, i));
    }
    auto value = std::make_unique<SQLConditionValueComponent>();
    value->values.push_back(columns.release());
    return value;
}

StatementConverter::NodePtr StatementConverter::convertLeaf(SqletTable* table) const {
    const char* const name = sqlet_select_tab_name(table);
    if (!name) return convertComplexSource(textOf(sqlet_select_tab_complex(table)));
    auto source = std::make_unique<SQLIdentifierSourceComponent>();
    source->path = pathOf(table);
    source->name = name;
    return nodeOf(std::move(source));
}

std::vector<std::string> StatementConverter::pathOf(SqletTable* table) const {
    std::vector<std::string> path;
    appendPresent(path, sqlet_select_tab_parent1(table));
    appendPresent(path, sqlet_select_tab_parent0(table));
    appendPresent(path, sqlet_select_tab_parent(table));
    if (path.empty() && !m_defaultSchema.empty()) path.push_back(m_defaultSchema);
    if (path.empty() && m_type == DatabaseTypeSQLServer) path.emplace_back("dbo");
    return path;
}

StatementConverter::NodePtr StatementConverter::convertComplexSource(
    const std::string& text) const {
    if (text.empty()) return nullptr;
    if (!isBracketed(text)) return freeText(text);
    std::string inner = text.substr(1, text.size() - 2);
    if (!isOneSelect(parseText(m_dialect, inner, m_defaultSchema).get())) return freeText(text);

    inner = dedented(inner, m_dialect);
    OwnedStatement statement(new SQLSelectStmtComponent);
    // What goes wrong in here leaves an empty statement and is told to nobody.
    const ParserHandle parser = parseText(m_dialect, inner, m_defaultSchema);
    if (isOneSelect(parser.get()))
        StatementConverter(m_type, m_defaultSchema).convert(sqlet_select(parser.get()), *statement);
    auto source = std::make_unique<SQLSubquerySourceComponent>();
    source->subquery = statement.release();
    return nodeOf(std::move(source));
}

void StatementConverter::noteAlias(SqletTable* table, Source* source) {
    const char* const alias = sqlet_select_tab_alias(table);
    if (alias && *alias) {
        source->alias = alias;
        m_sources[alias] = source;
    } else if (const auto* named = dynamic_cast<SQLIdentifierSourceComponent*>(source)) {
        m_sources[named->name] = source;
    }
}

}  // namespace QB
