// The clauses and the columns of a statement.

#include "parser/statement_converter.h"

#include <charconv>
#include <cstring>
#include <utility>

#include "parser/converter_texts.h"

namespace QB {

using namespace Component::SQL;

namespace {

/// -1 for an absent text and for one that is no number.
std::int32_t rowsOf(const char* text) {
    if (!text) return -1;
    std::int32_t rows = -1;
    const char* const end = text + std::strlen(text);
    const auto [read, error] = std::from_chars(text, end, rows);
    return error == std::errc() && read == end ? rows : -1;
}

/// A negative number says that the column's text carries its own direction.
OrderDirection directionOf(SqletColumn* column) {
    const int isDescending = sqlet_select_column_is_desc(column);
    if (isDescending < 0) return OrderDirectionNone;
    return isDescending ? OrderDirectionDescending : OrderDirectionAscending;
}

void setDirection(SQLAbstractColumnComponent& column, OrderDirection direction) {
    auto* extra = new SQLAbstractColumnComponent::ExtraDataOrderDirection;
    column.extraData = extra;
    extra->direction = direction;
}

bool isAsterisk(const char* text) {
    return text && std::strcmp(text, "*") == 0;
}

}  // namespace

StatementConverter::StatementConverter(DatabaseType type, const std::string& defaultSchema)
    : m_type(type), m_dialect(parserDialect(type)), m_defaultSchema(defaultSchema) {}

void StatementConverter::convert(SqletSelect* select, SQLSelectStmtComponent& statement) {
    statement.sourceExpr->root = convertTable(sqlet_select_tab(select), 0).release();
    if (sqlet_select_is_distinct(select)) statement.selectColumnExpr->selectOption += "DISTINCT";
    const int columnCount = sqlet_select_number_of_columns(select);
    for (int i = 0; i < columnCount; ++i) {
        ColumnPtr column = convertColumn(sqlet_select_column_at(select, i), m_columnAliases);
        if (column) statement.selectColumnExpr->columns.push_back(column.release());
    }
    statement.whereExpr->root =
        convertCondition(sqlet_select_where_expr(select), 0, nullptr).release();
    convertList(select, sqlet_select_group_by_number_of_columns, sqlet_select_group_by_column_at,
                false, statement.groupByExpr->columns);
    statement.havingExpr->root =
        convertCondition(sqlet_select_having_expr(select), 0, nullptr).release();
    convertList(select, sqlet_select_order_by_number_of_columns, sqlet_select_order_by_column_at,
                true, statement.orderByExpr->columns);
    convertLimit(select, *statement.limitExpr);
}

void StatementConverter::convertList(SqletSelect* select, CountOf count, ColumnAt at,
                                     bool isOrderBy, Columns& columns) {
    const int columnCount = count(select);
    for (int i = 0; i < columnCount; ++i) {
        SqletColumn* const node = at(select, i);
        ColumnPtr column = convertColumn(node, m_columnAliases);
        if (!column) continue;
        setDirection(*column, isOrderBy ? directionOf(node) : OrderDirectionNone);
        columns.push_back(column.release());
    }
}

void StatementConverter::convertLimit(SqletSelect* select, ELEMSQLLimitExpr& limit) const {
    const bool isFirst = isWord(sqlet_select_limit_fetch_option(select), "FIRST");
    limit.offset = isFirst ? -1 : rowsOf(sqlet_select_limit_offset(select));
    limit.rowCount = rowsOf(sqlet_select_limit_limit(select));
    limit.isPercent = sqlet_select_limit_is_fetch_percent(select) != 0;
    if (const char* option = sqlet_select_limit_return_option(select)) limit.returnOption = option;
}

// ---- columns --------------------------------------------------------------------------------

StatementConverter::ColumnPtr StatementConverter::convertColumn(SqletColumn* column,
                                                                ColumnAliases& aliases) const {
    if (!column) return nullptr;
    const char* const name = sqlet_select_column_name(column);
    ColumnPtr result =
        name ? convertFieldColumn(column, name, aliases) : convertExpressionColumn(column);
    result->alias = textOf(sqlet_select_column_alias(column));
    if (!result->alias.empty()) aliases[result->alias] = result.get();
    return result;
}

StatementConverter::ColumnPtr StatementConverter::convertExpressionColumn(
    SqletColumn* column) const {
    const char* const aggregate = sqlet_select_column_aggre_func(column);
    if (aggregate && isAsterisk(sqlet_select_column_aggre_func_param(column))) {
        auto field = std::make_unique<SQLFieldColumnComponent>();
        field->isAsterisk = true;
        field->aggregateFunction = aggregate;
        return field;
    }
    auto expression = std::make_unique<SQLAnyExpressionColumnComponent>();
    expression->expression = textOf(sqlet_select_column_complex(column));
    return expression;
}

StatementConverter::ColumnPtr StatementConverter::convertFieldColumn(
    SqletColumn* column, const char* name, const ColumnAliases& aliases) const {
    auto field = std::make_unique<SQLFieldColumnComponent>();
    std::vector<std::string>& path = field->parentPath;
    appendPresent(path, sqlet_select_column_parent0(column));
    appendPresent(path, sqlet_select_column_parent1(column));
    appendPresent(path, sqlet_select_column_parent2(column));
    if (path.size() == 1) field->source = findSource(path.front());
    // A table that was named without its schema: the table's own, which need not be the default.
    const auto* table = dynamic_cast<SQLIdentifierSourceComponent*>(field->source);
    if (table && table->alias.empty())
        path.insert(path.begin(), table->path.begin(), table->path.end());

    if (isAsterisk(name) && isAsterisk(sqlet_select_column_formatted_name(column))) {
        field->isAsterisk = true;
    } else {
        const auto referenced = path.empty() ? aliases.find(name) : aliases.end();
        if (referenced != aliases.end()) field->referencedColumn = referenced->second;
        field->fieldName = name;
    }
    field->aggregateFunction = textOf(sqlet_select_column_aggre_func(column));
    return field;
}

StatementConverter::Source* StatementConverter::findSource(const std::string& name) const {
    const auto found = m_sources.find(name);
    return found == m_sources.end() ? nullptr : found->second;
}

}  // namespace QB
